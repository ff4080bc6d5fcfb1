#include "platform/macos/system/SystemNames.h"

#include <initializer_list>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString nameAt(qint64 number, std::initializer_list<QLatin1StringView> names)
{
    if (number < 0 || number >= static_cast<qint64>(names.size()))
        return u"unknown"_s;
    return names.begin()[number];
}

} // namespace

QString frameStatusName(qint64 status)
{
    return nameAt(status, {"complete"_L1, "idle"_L1, "blank"_L1, "suspended"_L1, "started"_L1, "stopped"_L1});
}

QString authorizationName(qint64 status)
{
    return nameAt(status,
                  {"notDetermined"_L1, "denied"_L1, "authorized"_L1, "provisional"_L1, "ephemeral"_L1});
}

QString alertSettingName(qint64 setting)
{
    return nameAt(setting, {"notSupported"_L1, "disabled"_L1, "enabled"_L1});
}

} // namespace velbrix
