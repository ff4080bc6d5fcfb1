#pragma once

#include "platform/UserNotifications.h"

#include <memory>

namespace velbrix {

// The user-notification centre. Banners show while the program is frontmost
// too. A bare executable has no centre; it gets the reason instead.
class MacUserNotifications final : public UserNotifications {
public:
    MacUserNotifications();
    ~MacUserNotifications() override;

    void registerCategory(const QString identifier) override;
    QCoro::Task<Result<bool>> requestAuthorization() override;
    QCoro::Task<NotificationSettings> settings() override;
    QCoro::Task<Result<void>> post(const UserNotification notification) override;

private:
    struct Private;
    std::unique_ptr<Private> _d;
};

} // namespace velbrix
