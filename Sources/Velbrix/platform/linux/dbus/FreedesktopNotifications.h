#pragma once

#include "platform/UserNotifications.h"

#include <QHash>

namespace velbrix {

// The desktop's notification service on the session bus. It grants everything
// it can do, so the only question is whether there is one.
class FreedesktopNotifications final : public UserNotifications {
public:
    // A notification names its category itself; the service keeps no list.
    void registerCategory(QString identifier) override;
    // Starts no service: one that the bus can start on demand counts as there.
    QCoro::Task<Result<bool>> requestAuthorization() override;
    QCoro::Task<NotificationSettings> settings() override;
    QCoro::Task<Result<void>> post(const UserNotification notification) override;

private:
    QHash<QString, uint> _shown; // the service's number by our identifier
};

} // namespace velbrix
