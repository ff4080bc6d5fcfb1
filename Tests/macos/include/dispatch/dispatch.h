#pragma once

#include <stdint.h>

#pragma clang assume_nonnull begin

#define API_AVAILABLE(platform) __API_AVAILABLE_##platform
#define __API_AVAILABLE_macos(release) __attribute__((availability(macos, introduced = release)))

extern "C" {

@protocol OS_dispatch_queue
@end
@protocol OS_dispatch_queue_attr
@end
@protocol OS_dispatch_group
@end
typedef id<OS_dispatch_queue> dispatch_queue_t;
typedef id<OS_dispatch_queue_attr> dispatch_queue_attr_t;
typedef id<OS_dispatch_group> dispatch_group_t;
typedef void (^dispatch_block_t)(void);

typedef enum : unsigned int { QOS_CLASS_USER_INITIATED = 0x19 } dispatch_qos_class_t;

#define DISPATCH_QUEUE_SERIAL nullptr

dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t _Nullable attr,
                                                              dispatch_qos_class_t qos, int relativePriority);
dispatch_queue_t dispatch_queue_create(const char *_Nullable label, dispatch_queue_attr_t _Nullable attr);
dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags);
typedef uint64_t dispatch_time_t;
#define DISPATCH_TIME_NOW (0ull)
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_sync(dispatch_queue_t queue, __attribute__((noescape)) dispatch_block_t block);
dispatch_group_t dispatch_group_create(void);
void dispatch_group_async(dispatch_group_t group, dispatch_queue_t queue, dispatch_block_t block);
void dispatch_group_notify(dispatch_group_t group, dispatch_queue_t queue, dispatch_block_t block);
}

#pragma clang assume_nonnull end
