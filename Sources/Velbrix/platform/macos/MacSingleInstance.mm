#include "platform/macos/MacSingleInstance.h"

#include "platform/macos/BundleIdentity.h"
#include "platform/macos/MainThread.h"

#import <AppKit/AppKit.h>

#include <unistd.h>
#include <utility>

static NSNotificationName const wakeNotification = @"com.tamsel.Velbrix.single-instance";

@interface VBWakeObserver : NSObject
- (instancetype)initWithWake:(std::function<void()>)wake;
@end

@implementation VBWakeObserver {
    std::shared_ptr<std::function<void()>> _wake;
}

- (instancetype)initWithWake:(std::function<void()>)wake
{
    if ((self = [super init])) {
        _wake = std::make_shared<std::function<void()>>(std::move(wake));
        [[NSDistributedNotificationCenter defaultCenter]
                   addObserver:self
                      selector:@selector(handleBringToFrontNotification:)
                          name:wakeNotification
                        object:nil
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
    }
    return self;
}

- (void)handleBringToFrontNotification:(NSNotification *)notification
{
    velbrix::onMainThread([wake = std::weak_ptr(_wake)] {
        if (const auto alive = wake.lock())
            (*alive)();
    });
}

- (void)dealloc
{
    [[NSDistributedNotificationCenter defaultCenter] removeObserver:self];
}

@end

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
    VBWakeObserver *observer = nil;
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
    _d->observer = [[VBWakeObserver alloc] initWithWake:std::move(wake)];
}

} // namespace velbrix
