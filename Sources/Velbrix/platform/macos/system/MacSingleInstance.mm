#include "platform/macos/system/MacSingleInstance.h"

#include "platform/macos/applications/BundleIdentity.h"
#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <unistd.h>
#include <utility>

static NSNotificationName const wakeNotification = @"com.tamsel.Velbrix.single-instance";

namespace velbrix {
namespace {

NSRunningApplication *otherCopy()
{
    for (NSRunningApplication *copy in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:bundleIdentifier()]) {
        if (copy.processIdentifier != getpid() && !copy.isTerminated)
            return copy;
    }
    return nil;
}

} // namespace

struct MacSingleInstance::Private {
    VBNotificationWatch *observer = nil;
};

MacSingleInstance::MacSingleInstance() : _d(std::make_unique<Private>()) {}

MacSingleInstance::~MacSingleInstance() = default;

bool MacSingleInstance::claim()
{
    return !otherCopy();
}

void MacSingleInstance::wakeOther()
{
    NSRunningApplication *other = otherCopy();
    // Without this the system keeps the other copy's windows behind the ones
    // that the user has in front now.
    if (other)
        [NSApplication.sharedApplication yieldActivationToApplication:other];
    [[NSDistributedNotificationCenter defaultCenter] postNotificationName:wakeNotification
                                                                   object:nil
                                                                 userInfo:nil
                                                       deliverImmediately:YES];
    [other activateWithOptions:NSApplicationActivateAllWindows];
}

void MacSingleInstance::observeWake(std::function<void()> wake)
{
    _d->observer = [[VBNotificationWatch alloc]
        initWithDistributedName:wakeNotification
                         posted:[wake = std::move(wake)](NSNotification *) { wake(); }];
}

} // namespace velbrix
