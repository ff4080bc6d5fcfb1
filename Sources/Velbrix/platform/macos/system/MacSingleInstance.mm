#include "platform/macos/system/MacSingleInstance.h"

#include "foundation/Log.h"
#include "platform/macos/applications/BundleIdentity.h"
#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <unistd.h>
#include <utility>

static NSNotificationName const wakeNotification = @"com.tamsel.Velbrix.single-instance";

using namespace Qt::StringLiterals;

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

bool MacSingleInstance::wakeOther()
{
    NSRunningApplication *other = otherCopy();
    if (!other)
        return false;
    // Without this the system keeps the other copy's windows behind the ones
    // that the user has in front now.
    [NSApplication.sharedApplication yieldActivationToApplication:other];
    [[NSDistributedNotificationCenter defaultCenter] postNotificationName:wakeNotification
                                                                   object:nil
                                                                 userInfo:nil
                                                       deliverImmediately:YES];
    [other activateWithOptions:NSApplicationActivateAllWindows];
    return true;
}

Observation MacSingleInstance::observeWake(std::function<void()> wake)
{
    return observationOf([[VBNotificationWatch alloc]
        initWithDistributedName:wakeNotification
                         posted:[wake = std::move(wake)](NSNotification *) { wake(); }]);
}

void MacSingleInstance::leave()
{
    const auto openAgain = [this] {
        if (!std::exchange(_opensAgain, true))
            openAfterThis(toQString(NSBundle.mainBundle.bundlePath));
    };
    _wakes = observeWake(openAgain);
    _reopens = observationOf([[VBReopenWatch alloc] initWithReopened:openAgain]);
}

// Waits in a process of its own, so that it comes to pass however this one ends.
void openAfterThis(const QString &bundle)
{
    NSString *const script =
        @"while /bin/kill -0 $0 2>/dev/null; do /bin/sleep 0.1; done; exec /usr/bin/open \"$1\"";
    NSTask *const task = [[NSTask alloc] init];
    task.executableURL = [NSURL fileURLWithPath:@"/bin/sh"];
    task.arguments = @[ @"-c", script, toNSString(QString::number(getpid())), toNSString(bundle) ];
    NSError *error = nil;
    if (![task launchAndReturnError:&error])
        log::line(u"Velbrix"_s, u"open again: "_s + toQString(error.localizedDescription));
}

} // namespace velbrix
