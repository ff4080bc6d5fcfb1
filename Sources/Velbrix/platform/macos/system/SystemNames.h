#pragma once

#include <QString>

namespace velbrix {

// Names for the numbers that the system's interfaces answer with.

// SCFrameStatus; "unknown" for numbers of later systems.
QString frameStatusName(qint64 status);
// UNAuthorizationStatus
QString authorizationName(qint64 status);
// UNNotificationSetting
QString alertSettingName(qint64 setting);

} // namespace velbrix
