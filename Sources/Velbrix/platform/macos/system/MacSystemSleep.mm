#include "platform/macos/system/MacSystemSleep.h"

#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <utility>

namespace velbrix {
namespace {

class WakingWatch final : public Observation {
public:
    explicit WakingWatch(std::function<void()> woke)
        : _watch([[VBNotificationWatch alloc] initWithCenter:NSWorkspace.sharedWorkspace.notificationCenter
                                                        name:NSWorkspaceDidWakeNotification
                                                      posted:[woke = std::move(woke)](NSNotification *) {
                                                          const auto call = woke; // it may end the watch
                                                          call();
                                                      }])
    {
    }

private:
    VBNotificationWatch *_watch;
};

} // namespace

std::unique_ptr<Observation> MacSystemSleep::watchWaking(std::function<void()> woke)
{
    return std::make_unique<WakingWatch>(std::move(woke));
}

} // namespace velbrix
