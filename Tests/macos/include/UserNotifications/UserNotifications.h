#pragma once

#include <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@class UNUserNotificationCenter;

typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions) {
    UNAuthorizationOptionBadge = 1 << 0,
    UNAuthorizationOptionSound = 1 << 1,
    UNAuthorizationOptionAlert = 1 << 2,
};
typedef NS_ENUM(NSInteger, UNAuthorizationStatus) {
    UNAuthorizationStatusNotDetermined = 0,
    UNAuthorizationStatusDenied,
    UNAuthorizationStatusAuthorized,
    UNAuthorizationStatusProvisional,
};
typedef NS_ENUM(NSInteger, UNNotificationSetting) {
    UNNotificationSettingNotSupported = 0,
    UNNotificationSettingDisabled,
    UNNotificationSettingEnabled,
};
typedef NS_OPTIONS(NSUInteger, UNNotificationCategoryOptions) { UNNotificationCategoryOptionNone = 0 };
typedef NS_OPTIONS(NSUInteger, UNNotificationPresentationOptions) {
    UNNotificationPresentationOptionSound = 1 << 1,
    UNNotificationPresentationOptionList API_AVAILABLE(macos(11.0)) = 1 << 3,
    UNNotificationPresentationOptionBanner API_AVAILABLE(macos(11.0)) = 1 << 4,
};

@interface UNNotification : NSObject
@end
@interface UNNotificationAction : NSObject
@end

@interface UNNotificationCategory : NSObject <NSCopying>
+ (instancetype)categoryWithIdentifier:(NSString *)identifier
                               actions:(NSArray<UNNotificationAction *> *)actions
                     intentIdentifiers:(NSArray<NSString *> *)intentIdentifiers
                               options:(UNNotificationCategoryOptions)options;
@end

@interface UNNotificationSettings : NSObject
@property(nonatomic, readonly) UNAuthorizationStatus authorizationStatus;
@property(nonatomic, readonly) UNNotificationSetting alertSetting;
@end

@interface UNNotificationContent : NSObject
@end
@interface UNMutableNotificationContent : UNNotificationContent
@property(nonatomic, copy) NSString *title;
@property(nonatomic, copy) NSString *body;
@end
@interface UNNotificationTrigger : NSObject
@end
@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString *)identifier
                              content:(UNNotificationContent *)content
                              trigger:(nullable UNNotificationTrigger *)trigger;
@end

@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler;
@end

@interface UNUserNotificationCenter : NSObject
@property(nonatomic, weak, nullable) id<UNUserNotificationCenterDelegate> delegate;
+ (UNUserNotificationCenter *)currentNotificationCenter;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError *_Nullable error))completionHandler;
- (void)setNotificationCategories:(NSSet<UNNotificationCategory *> *)categories;
- (void)addNotificationRequest:(UNNotificationRequest *)request
         withCompletionHandler:(nullable void (^)(NSError *_Nullable error))completionHandler;
- (void)getNotificationSettingsWithCompletionHandler:(void (^)(UNNotificationSettings *settings))handler;
@end

#pragma clang assume_nonnull end
