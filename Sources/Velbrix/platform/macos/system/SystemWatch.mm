#include "platform/macos/system/SystemWatch.h"

#include "foundation/MainThreadRelay.h"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>

#include <memory>
#include <utility>

static char keyValueContext;

@implementation VBNotificationWatch {
    std::shared_ptr<std::function<void(NSNotification *)>> _posted;
    NSNotificationCenter *_center;
}

- (instancetype)initWithCenter:(NSNotificationCenter *)center
                          name:(NSNotificationName)name
                        posted:(std::function<void(NSNotification *)>)posted
{
    if ((self = [super init])) {
        _posted = std::make_shared<std::function<void(NSNotification *)>>(std::move(posted));
        _center = center;
        [center addObserver:self selector:@selector(handleNotification:) name:name object:nil];
    }
    return self;
}

- (instancetype)initWithDistributedName:(NSNotificationName)name
                                 posted:(std::function<void(NSNotification *)>)posted
{
    if ((self = [super init])) {
        _posted = std::make_shared<std::function<void(NSNotification *)>>(std::move(posted));
        NSDistributedNotificationCenter *center = [NSDistributedNotificationCenter defaultCenter];
        _center = center;
        [center addObserver:self
                      selector:@selector(handleNotification:)
                          name:name
                        object:nil
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
    }
    return self;
}

- (void)handleNotification:(NSNotification *)notification
{
    velbrix::onMainThread([target = std::weak_ptr(_posted), notification] {
        if (const auto alive = target.lock())
            (*alive)(notification);
    });
}

- (void)dealloc
{
    [_center removeObserver:self];
}

@end

static __weak VBReopenWatch *newestReopenWatch;

@implementation VBReopenWatch {
    std::shared_ptr<std::function<void()>> _reopened;
    VBNotificationWatch *_launch;
}

- (instancetype)initWithReopened:(std::function<void()>)reopened
{
    if ((self = [super init])) {
        _reopened = std::make_shared<std::function<void()>>(std::move(reopened));
        newestReopenWatch = self;
        [self install];
        // AppKit puts its own handler in this place while it launches.
        __weak VBReopenWatch *weakSelf = self;
        _launch = [[VBNotificationWatch alloc] initWithCenter:NSNotificationCenter.defaultCenter
                                                         name:NSApplicationDidFinishLaunchingNotification
                                                       posted:[weakSelf](NSNotification *) {
                                                           VBReopenWatch *watch = weakSelf;
                                                           if (watch && watch == newestReopenWatch)
                                                               [watch install];
                                                       }];
    }
    return self;
}

- (void)dealloc
{
    // Still that of a newer watch otherwise.
    if (!newestReopenWatch)
        [[NSAppleEventManager sharedAppleEventManager] removeEventHandlerForEventClass:kCoreEventClass
                                                                            andEventID:kAEReopenApplication];
}

- (void)install
{
    [[NSAppleEventManager sharedAppleEventManager] setEventHandler:self
                                                       andSelector:@selector(handleReopen:withReplyEvent:)
                                                     forEventClass:kCoreEventClass
                                                        andEventID:kAEReopenApplication];
}

- (void)handleReopen:(NSAppleEventDescriptor *)event withReplyEvent:(NSAppleEventDescriptor *)reply
{
    (void)event;
    (void)reply;
    velbrix::onMainThread([target = std::weak_ptr(_reopened)] {
        if (const auto alive = target.lock())
            (*alive)();
    });
}

@end

@implementation VBKeyValueWatch {
    std::shared_ptr<std::function<void()>> _changed;
    NSObject *_object;
    NSString *_keyPath;
}

- (instancetype)initWithObject:(NSObject *)object
                       keyPath:(NSString *)keyPath
                       changed:(std::function<void()>)changed
{
    if ((self = [super init])) {
        _changed = std::make_shared<std::function<void()>>(std::move(changed));
        _object = object;
        _keyPath = keyPath;
        [object addObserver:self forKeyPath:keyPath options:0 context:&keyValueContext];
    }
    return self;
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSString *, id> *)change
                       context:(void *)context
{
    if (context != &keyValueContext) {
        [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
        return;
    }
    [self check];
}

- (void)check
{
    velbrix::onMainThread([target = std::weak_ptr(_changed)] {
        if (const auto alive = target.lock())
            (*alive)();
    });
}

- (void)dealloc
{
    [_object removeObserver:self forKeyPath:_keyPath context:&keyValueContext];
}

@end
