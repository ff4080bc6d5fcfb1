#include "platform/macos/system/MacPermissions.h"

#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/PrivacyPanes.h"

#import <AVFoundation/AVFoundation.h>
#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>
#import <CoreGraphics/CoreGraphics.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

AuthorizationStatus statusFor(AVMediaType mediaType)
{
    switch ([AVCaptureDevice authorizationStatusForMediaType:mediaType]) {
    case AVAuthorizationStatusNotDetermined:
        return AuthorizationStatus::notDetermined;
    case AVAuthorizationStatusRestricted:
        return AuthorizationStatus::restricted;
    case AVAuthorizationStatusDenied:
        return AuthorizationStatus::denied;
    case AVAuthorizationStatusAuthorized:
        return AuthorizationStatus::authorized;
    }
    return AuthorizationStatus::restricted;
}

QCoro::Task<bool> requestAccess(AVMediaType mediaType)
{
    const Completion<bool> decided;
    [AVCaptureDevice requestAccessForMediaType:mediaType
                             completionHandler:^(BOOL granted) {
                                 decided.answer(granted != NO);
                             }];
    return answerOf(decided);
}

} // namespace

bool MacPermissions::preflightScreenCapture()
{
    return CGPreflightScreenCaptureAccess();
}

bool MacPermissions::requestScreenCapture()
{
    return CGRequestScreenCaptureAccess();
}

AuthorizationStatus MacPermissions::microphone() const
{
    return statusFor(AVMediaTypeAudio);
}

QCoro::Task<bool> MacPermissions::requestMicrophone()
{
    return requestAccess(AVMediaTypeAudio);
}

AuthorizationStatus MacPermissions::camera() const
{
    return statusFor(AVMediaTypeVideo);
}

QCoro::Task<bool> MacPermissions::requestCamera()
{
    return requestAccess(AVMediaTypeVideo);
}

bool MacPermissions::accessibilityTrusted() const
{
    return AXIsProcessTrusted();
}

void MacPermissions::promptForAccessibility()
{
    NSDictionary *options = @{(__bridge NSString *)kAXTrustedCheckOptionPrompt : @YES};
    AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
}

QString MacPermissions::explanation(PrivacyPane) const
{
    // Every one of them exists here and is the user's to give.
    return {};
}

bool MacPermissions::openSettings(PrivacyPane pane)
{
    NSURL *page = [NSURL URLWithString:toNSString(privacyPaneUrl(pane))];
    return page && [NSWorkspace.sharedWorkspace openURL:page];
}

} // namespace velbrix
