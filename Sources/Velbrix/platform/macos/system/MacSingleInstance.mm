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

Observation MacSingleInstance::observeWake(std::function<void()> wake)
{
    return observationOf([[VBNotificationWatch alloc]
        initWithDistributedName:wakeNotification
                         posted:[wake = std::move(wake)](NSNotification *) {
                             const auto call = wake; // it may end the observation
                             call();
                         }]);
}

} // namespace velbrix
