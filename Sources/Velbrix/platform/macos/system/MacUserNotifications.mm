#include "platform/macos/system/MacUserNotifications.h"

#include "platform/macos/applications/BundleIdentity.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/SystemNames.h"

#import <UserNotifications/UserNotifications.h>

using namespace Qt::StringLiterals;

@interface VBBannerPresenter : NSObject <UNUserNotificationCenterDelegate>
@end

@implementation VBBannerPresenter

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList |
                      UNNotificationPresentationOptionSound);
}

@end

namespace velbrix {

struct MacUserNotifications::Private {
    VBBannerPresenter *presenter = nil; // the centre holds its delegate weakly
};

MacUserNotifications::MacUserNotifications() : _d(std::make_unique<Private>()) {}

MacUserNotifications::~MacUserNotifications() = default;

void MacUserNotifications::registerCategory(const QString identifier)
{
    // Asking for the centre of a bare executable throws.
    if (!hasBundle())
        return;
    UNUserNotificationCenter *center = [UNUserNotificationCenter currentNotificationCenter];
    if (!_d->presenter)
        _d->presenter = [VBBannerPresenter new];
    center.delegate = _d->presenter;
    UNNotificationCategory *category =
        [UNNotificationCategory categoryWithIdentifier:toNSString(identifier)
                                               actions:@[]
                                     intentIdentifiers:@[]
                                               options:UNNotificationCategoryOptionNone];
    [center setNotificationCategories:[NSSet setWithObject:category]];
}

QCoro::Task<Result<bool>> MacUserNotifications::requestAuthorization()
{
    const Completion<Result<bool>> decided;
    if (!hasBundle()) {
        decided.answer(failure(u"程序不在应用包中运行，系统不提供通知"_s));
        return answerOf(decided);
    }
    [[UNUserNotificationCenter currentNotificationCenter]
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound |
                                        UNAuthorizationOptionBadge
                      completionHandler:^(BOOL granted, NSError *error) {
                          if (error)
                              decided.answer(std::unexpected(toFailure(error)));
                          else
                              decided.answer(granted != NO);
                      }];
    return answerOf(decided);
}

QCoro::Task<NotificationSettings> MacUserNotifications::settings()
{
    const Completion<NotificationSettings> read;
    if (!hasBundle()) {
        read.answer({false, u"unknown"_s, u"unknown"_s});
        return answerOf(read);
    }
    [[UNUserNotificationCenter currentNotificationCenter]
        getNotificationSettingsWithCompletionHandler:^(UNNotificationSettings *settings) {
            const UNAuthorizationStatus status = settings.authorizationStatus;
            const bool mayNotify =
                status == UNAuthorizationStatusAuthorized || status == UNAuthorizationStatusProvisional;
            read.answer({mayNotify, authorizationName(status), alertSettingName(settings.alertSetting)});
        }];
    return answerOf(read);
}

QCoro::Task<Result<void>> MacUserNotifications::post(const UserNotification notification)
{
    const Completion<Result<void>> posted;
    if (!hasBundle()) {
        posted.answer(failure(u"程序不在应用包中运行，系统不提供通知"_s));
        return answerOf(posted);
    }
    UNMutableNotificationContent *content = [UNMutableNotificationContent new];
    content.title = toNSString(notification.title);
    content.body = toNSString(notification.body);
    UNNotificationRequest *request =
        [UNNotificationRequest requestWithIdentifier:toNSString(notification.identifier)
                                             content:content
                                             trigger:nil];
    [[UNUserNotificationCenter currentNotificationCenter]
        addNotificationRequest:request
         withCompletionHandler:^(NSError *error) {
             if (error)
                 posted.answer(std::unexpected(toFailure(error)));
             else
                 posted.answer(Result<void>());
         }];
    return answerOf(posted);
}

} // namespace velbrix
