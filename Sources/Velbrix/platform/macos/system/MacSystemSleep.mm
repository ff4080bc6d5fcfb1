#include "platform/macos/system/MacSystemSleep.h"

#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <utility>

namespace velbrix {
Observation MacSystemSleep::observeWaking(std::function<void()> woke)
{
    return observationOf([[VBNotificationWatch alloc]
        initWithCenter:NSWorkspace.sharedWorkspace.notificationCenter
                  name:NSWorkspaceDidWakeNotification
                posted:[woke = std::move(woke)](NSNotification *) { woke(); }]);
}

} // namespace velbrix
