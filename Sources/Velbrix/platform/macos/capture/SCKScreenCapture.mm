#include "platform/macos/capture/SCKScreenCapture.h"

#include "platform/macos/capture/SCKCaptureSession.h"
#include "platform/macos/capture/ScreenGeometry.h"
#include "platform/macos/capture/WindowOrder.h"
#include "platform/macos/desktop/PictureBridge.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"

#import <CoreGraphics/CoreGraphics.h>
#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <unistd.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QRectF toRect(CGRect rect)
{
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

QList<quint32> windowIdsFrontToBack()
{
    NSArray<NSDictionary *> *windows =
        CFBridgingRelease(CGWindowListCopyWindowInfo(kCGWindowListOptionOnScreenOnly, kCGNullWindowID));
    QList<quint32> ids;
    for (NSDictionary *window in windows) {
        NSNumber *number = window[(__bridge NSString *)kCGWindowNumber];
        if (number)
            ids.append(number.unsignedIntValue);
    }
    return ids;
}

CapturableWindow toWindow(SCWindow *window)
{
    SCRunningApplication *application = window.owningApplication;
    CapturableWindow copy;
    copy.windowId = window.windowID;
    copy.title = toQString(window.title);
    copy.appName = toQString(application.applicationName);
    if (application.bundleIdentifier)
        copy.bundleId = toQString(application.bundleIdentifier);
    copy.processId = application.processID;
    copy.frame = toRect(window.frame);
    copy.isNormal = window.windowLayer == 0;
    copy.isDesktop = window.windowLayer < 0;
    return copy;
}

ShareableContent toContent(SCShareableContent *content)
{
    ShareableContent copy;
    for (SCDisplay *display in content.displays)
        copy.displays.append(
            {display.displayID, toRect(display.frame), display.displayID == CGMainDisplayID()});
    for (SCWindow *window in content.windows)
        copy.windows.append(toWindow(window));
    copy.windows = frontToBack(copy.windows, windowIdsFrontToBack());
    return copy;
}

bool isThisProgram(SCRunningApplication *application)
{
    return application && (application.processID == ::getpid() ||
                           [application.bundleIdentifier isEqualToString:@"com.tamsel.Velbrix"]);
}

// CGDisplayPixelsWide and CGDisplayPixelsHigh tell points in HiDPI modes.
QSize pixelsOf(CGDirectDisplayID display)
{
    const QSizeF points(static_cast<double>(CGDisplayPixelsWide(display)),
                        static_cast<double>(CGDisplayPixelsHigh(display)));
    CGDisplayModeRef mode = CGDisplayCopyDisplayMode(display);
    if (!mode)
        return points.toSize();
    const QSize pixels(static_cast<int>(CGDisplayModeGetPixelWidth(mode)),
                       static_cast<int>(CGDisplayModeGetPixelHeight(mode)));
    CGDisplayModeRelease(mode);
    return displayPixels(pixels, points);
}

SCStreamConfiguration *toStreamConfiguration(const StreamConfiguration &wanted)
{
    SCStreamConfiguration *configuration = [SCStreamConfiguration new];
    configuration.width = static_cast<size_t>(wanted.width);
    configuration.height = static_cast<size_t>(wanted.height);
    configuration.minimumFrameInterval = CMTimeMake(1, wanted.framesPerSecond);
    configuration.queueDepth = wanted.queueDepth;
    configuration.showsCursor = wanted.showsCursor;
    configuration.pixelFormat = kCVPixelFormatType_32BGRA;
    configuration.colorSpaceName = kCGColorSpaceSRGB;
    configuration.scalesToFit = YES;
    configuration.backgroundColor = CGColorGetConstantColor(kCGColorBlack);
    configuration.capturesAudio = wanted.capturesAudio;
    if (wanted.capturesAudio) {
        configuration.sampleRate = wanted.sampleRate;
        configuration.channelCount = wanted.channelCount;
        configuration.excludesCurrentProcessAudio = wanted.excludesCurrentProcessAudio;
    }
    if (@available(macOS 15.0, *)) {
        configuration.captureMicrophone = wanted.capturesMicrophone;
        if (wanted.capturesMicrophone && wanted.microphoneDeviceId)
            configuration.microphoneCaptureDeviceID = toNSString(*wanted.microphoneDeviceId);
    }
    return configuration;
}

} // namespace

struct SCKScreenCapture::Shelf {
    SCShareableContent *content = nil;

    SCWindow *window(quint32 windowId) const;
    SCDisplay *display(quint32 displayId) const;
    Result<SCContentFilter *> contentFilter(const CaptureFilter &filter) const;
    SCContentFilter *contentFilterWithoutThisProgram(SCDisplay *whole) const;
};

SCWindow *SCKScreenCapture::Shelf::window(quint32 windowId) const
{
    for (SCWindow *window in content.windows) {
        if (window.windowID == windowId)
            return window;
    }
    return nil;
}

SCDisplay *SCKScreenCapture::Shelf::display(quint32 displayId) const
{
    for (SCDisplay *display in content.displays) {
        if (display.displayID == displayId)
            return display;
    }
    return nil;
}

// By application, so that windows which open later are left out as well. Nil
// while this program has no windows that the system tells of.
SCContentFilter *SCKScreenCapture::Shelf::contentFilterWithoutThisProgram(SCDisplay *whole) const
{
    NSMutableArray<SCRunningApplication *> *own = [NSMutableArray new];
    for (SCRunningApplication *application in content.applications) {
        if (isThisProgram(application))
            [own addObject:application];
    }
    if (own.count == 0)
        return nil;
    NSMutableArray<SCWindow *> *desktop = [NSMutableArray new];
    for (SCWindow *window in content.windows) {
        if (window.windowLayer < 0 && isThisProgram(window.owningApplication))
            [desktop addObject:window];
    }
    return [[SCContentFilter alloc] initWithDisplay:whole excludingApplications:own exceptingWindows:desktop];
}

Result<SCContentFilter *> SCKScreenCapture::Shelf::contentFilter(const CaptureFilter &filter) const
{
    if (filter.windowId) {
        SCWindow *single = window(*filter.windowId);
        if (!single)
            return failure(u"窗口已关闭或不在屏幕上"_s);
        return [[SCContentFilter alloc] initWithDesktopIndependentWindow:single];
    }
    SCDisplay *whole = display(filter.displayId);
    if (!whole)
        return failure(u"没有找到显示器"_s);
    if (filter.excludesOwnWindows) {
        if (SCContentFilter *without = contentFilterWithoutThisProgram(whole))
            return without;
    }
    NSMutableArray<SCWindow *> *excluded = [NSMutableArray new];
    for (const quint32 windowId : filter.excludedWindows) {
        if (SCWindow *left = window(windowId))
            [excluded addObject:left];
    }
    return [[SCContentFilter alloc] initWithDisplay:whole excludingWindows:excluded];
}

SCKScreenCapture::SCKScreenCapture() : _shelf(std::make_shared<Shelf>()) {}

SCKScreenCapture::~SCKScreenCapture() = default;

CaptureFeatures SCKScreenCapture::features() const
{
    if (@available(macOS 15.0, *))
        return {.recordingOutput = true, .microphone = true, .ownSoundExclusion = true};
    return {.ownSoundExclusion = true};
}

QCoro::Task<Result<ShareableContent>> SCKScreenCapture::shareableContent()
{
    const Completion<Result<ShareableContent>> fetched;
    const std::weak_ptr<Shelf> shelf = _shelf;
    [SCShareableContent
        getShareableContentExcludingDesktopWindows:NO
                               onScreenWindowsOnly:YES
                                 completionHandler:^(SCShareableContent *content, NSError *error) {
                                     if (!content) {
                                         fetched.answer(std::unexpected(toFailure(error)));
                                         return;
                                     }
                                     onMainThread([shelf, content] {
                                         if (const auto alive = shelf.lock())
                                             alive->content = content;
                                     });
                                     fetched.answer(toContent(content));
                                 }];
    return answerOf(fetched);
}

QCoro::Task<Result<QImage>> SCKScreenCapture::windowImage(quint32 windowId, QSize size)
{
    const Completion<Result<QImage>> taken;
    CaptureFilter alone;
    alone.windowId = windowId;
    const Result<SCContentFilter *> filter = _shelf->contentFilter(alone);
    if (!filter) {
        taken.answer(std::unexpected(filter.error()));
        return answerOf(taken);
    }
    SCStreamConfiguration *configuration = [SCStreamConfiguration new];
    configuration.width = static_cast<size_t>(size.width());
    configuration.height = static_cast<size_t>(size.height());
    configuration.showsCursor = NO;
    configuration.scalesToFit = YES;
    [SCScreenshotManager captureImageWithFilter:*filter
                                  configuration:configuration
                              completionHandler:^(CGImageRef image, NSError *error) {
                                  const QImage picture = toQImage(image);
                                  if (picture.isNull())
                                      taken.answer(std::unexpected(toFailure(error)));
                                  else
                                      taken.answer(picture);
                              }];
    return answerOf(taken);
}

Result<CaptureGeometry> SCKScreenCapture::geometry(const CaptureFilter &filter)
{
    const Result<SCContentFilter *> seen = _shelf->contentFilter(filter);
    if (!seen)
        return std::unexpected(seen.error());
    const CGDirectDisplayID display = filter.displayId ? filter.displayId : CGMainDisplayID();
    CaptureGeometry geometry;
    geometry.contentSize = toRect((*seen).contentRect).size();
    geometry.pointPixelScale = static_cast<double>((*seen).pointPixelScale);
    geometry.displayPixels = pixelsOf(display);
    return geometry;
}

Result<std::unique_ptr<CaptureSession>>
SCKScreenCapture::makeSession(const CaptureFilter &filter, const StreamConfiguration &configuration,
                              CaptureObserver observer)
{
    const Result<SCContentFilter *> seen = _shelf->contentFilter(filter);
    if (!seen)
        return std::unexpected(seen.error());
    return std::make_unique<SCKCaptureSession>(*seen, toStreamConfiguration(configuration),
                                               std::move(observer));
}

} // namespace velbrix
