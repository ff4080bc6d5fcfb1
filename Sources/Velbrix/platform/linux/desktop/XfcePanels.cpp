#include "platform/linux/desktop/XfcePanels.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// A bar that hides "intelligently" is there as long as no window needs its room.
enum Behaviour { never, intelligently, always };

} // namespace

QCoro::Task<Result<QJsonObject>> XfcePanels::read()
{
    const auto values = co_await _settings.values(u"/panels"_s);
    if (!values)
        co_return std::unexpected(values.error());
    static const QRegularExpression panel(u"^/panels/panel-\\d+(?=/)"_s);
    QJsonObject found;
    for (auto value = values->begin(); value != values->end(); ++value) {
        // A panel that has never been told says nothing of hiding.
        const QString name = panel.match(value.key()).captured() + u"/autohide-behavior"_s;
        if (name.startsWith(u"/panels/"_s))
            found.insert(name, values->value(name, never).toInt());
    }
    if (found.isEmpty())
        co_return failure(u"Xfce 没有面板"_s);
    co_return found;
}

QCoro::Task<Result<void>> XfcePanels::write(const QJsonObject values)
{
    for (auto value = values.begin(); value != values.end(); ++value) {
        const QVariant behaviour = static_cast<uint>(value->toInt());
        if (const auto done = co_await _settings.set(value.key(), behaviour); !done)
            co_return std::unexpected(done.error());
    }
    co_return Result<void>();
}

bool XfcePanels::hides(const QJsonObject &values) const
{
    return std::ranges::all_of(values, [](const QJsonValue &value) { return value.toInt() == always; });
}

QJsonObject XfcePanels::hidden(QJsonObject values) const
{
    for (auto value = values.begin(); value != values.end(); ++value)
        *value = always;
    return values;
}

QJsonObject XfcePanels::shown(QJsonObject values) const
{
    for (auto value = values.begin(); value != values.end(); ++value)
        *value = never;
    return values;
}

} // namespace velbrix
