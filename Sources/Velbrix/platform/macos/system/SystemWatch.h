#pragma once

#import <Foundation/Foundation.h>

#include "foundation/Observation.h"

#include <functional>

// What the system announces, on the main thread at its next turn, whatever the
// thread of the announcement; ends when the watch is released.

@interface VBNotificationWatch : NSObject
- (instancetype)initWithCenter:(NSNotificationCenter *)center
                          name:(NSNotificationName)name
                        posted:(std::function<void(NSNotification *)>)posted;
// Comes at once, even while this program is in the background.
- (instancetype)initWithDistributedName:(NSNotificationName)name
                                 posted:(std::function<void(NSNotification *)>)posted;
@end

// The user opens this running program again, from the Dock or the Finder. Of
// several watches the newest is told alone, in place of AppKit.
@interface VBReopenWatch : NSObject
- (instancetype)initWithReopened:(std::function<void()>)reopened;
@end

// Keeps the object alive.
@interface VBKeyValueWatch : NSObject
- (instancetype)initWithObject:(NSObject *)object
                       keyPath:(NSString *)keyPath
                       changed:(std::function<void()>)changed;
// Calls as for a change, for a value that may be reached already.
- (void)check;
@end

namespace velbrix {

// Keeps the watch.
inline Observation observationOf(id watch)
{
    return Observation([watch]() mutable { watch = nil; });
}

} // namespace velbrix
