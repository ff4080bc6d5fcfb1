#include "platform/linux/desktop/Xfconf.h"

#include "platform/linux/dbus/BusCall.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QCoro::Task<Result<QVariantList>> call(const QString method, const QVariantList arguments)
{
    return callSessionBus(u"org.xfce.Xfconf"_s, u"/org/xfce/Xfconf"_s, u"org.xfce.Xfconf"_s, method,
                          arguments);
}

} // namespace

QCoro::Task<Result<QVariantMap>> Xfconf::values(const QString base) const
{
    const QVariantList arguments{_channel, base};
    const auto answer = co_await call(u"GetAllProperties"_s, arguments);
    if (!answer)
        co_return std::unexpected(answer.error());
    const QVariantMap values = answer->isEmpty() ? QVariantMap() : qdbus_cast<QVariantMap>(answer->first());
    co_return values;
}

QCoro::Task<Result<void>> Xfconf::set(const QString property, const QVariant value) const
{
    const QVariantList arguments{_channel, property, QVariant::fromValue(QDBusVariant(value))};
    const auto answer = co_await call(u"SetProperty"_s, arguments);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return Result<void>();
}

QCoro::Task<Result<void>> Xfconf::reset(const QString property) const
{
    const QVariantList arguments{_channel, property, false};
    const auto answer = co_await call(u"ResetProperty"_s, arguments);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return Result<void>();
}

} // namespace velbrix
