#include "platform/linux/desktop/Xfconf.h"

#include "platform/linux/dbus/Bus.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const BusObject xfconf{.service = u"org.xfce.Xfconf"_s,
                       .path = u"/org/xfce/Xfconf"_s,
                       .interface = u"org.xfce.Xfconf"_s,
                       .category = u"Wallpaper"_s};

} // namespace

QCoro::Task<Result<QVariantMap>> Xfconf::values(const QString base) const
{
    const QVariantList arguments{_channel, base};
    const auto answer = co_await callBus(xfconf, u"GetAllProperties"_s, arguments);
    if (!answer)
        co_return std::unexpected(answer.error());
    const QVariantMap values = qdbus_cast<QVariantMap>(answer->value(0));
    co_return values;
}

QCoro::Task<Result<void>> Xfconf::set(const QString property, const QVariant value) const
{
    const QVariantList arguments{_channel, property, QVariant::fromValue(QDBusVariant(value))};
    const auto answer = co_await callBus(xfconf, u"SetProperty"_s, arguments);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return Result<void>();
}

QCoro::Task<Result<void>> Xfconf::reset(const QString property) const
{
    const QVariantList arguments{_channel, property, false};
    const auto answer = co_await callBus(xfconf, u"ResetProperty"_s, arguments);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return Result<void>();
}

} // namespace velbrix
