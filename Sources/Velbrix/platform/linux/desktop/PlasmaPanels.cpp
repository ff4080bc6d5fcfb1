#include "platform/linux/desktop/PlasmaPanels.h"

#include "platform/linux/desktop/PlasmaScript.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString readScript = uR"(
var found = {};
panels().forEach(function (p) { found[String(p.id)] = p.hiding; });
print(JSON.stringify(found));
)"_s;

const QString writeScript = uR"(
panels().forEach(function (p) {
    if (input[String(p.id)] !== undefined)
        p.hiding = input[String(p.id)];
});
)"_s;

// One that dodges windows is there as long as none is in its way; one that windows
// cover, or lie under, does not hide at all.
bool isHiding(const QJsonValue &value)
{
    return value == u"autohide"_s;
}

} // namespace

QCoro::Task<Result<QJsonObject>> PlasmaPanels::read()
{
    const auto panels = co_await runPlasmaScript(readScript, QJsonDocument());
    if (!panels)
        co_return std::unexpected(panels.error());
    if (panels->object().isEmpty())
        co_return failure(u"Plasma 没有面板"_s);
    co_return panels->object();
}

QCoro::Task<Result<void>> PlasmaPanels::write(const QJsonObject values)
{
    const QJsonDocument input(values);
    const auto done = co_await runPlasmaScript(writeScript, input);
    if (!done)
        co_return std::unexpected(done.error());
    co_return Result<void>();
}

bool PlasmaPanels::hides(const QJsonObject &values) const
{
    return std::ranges::all_of(values, isHiding);
}

QJsonObject PlasmaPanels::hidden(QJsonObject values) const
{
    for (auto value = values.begin(); value != values.end(); ++value)
        *value = u"autohide"_s;
    return values;
}

QJsonObject PlasmaPanels::shown(QJsonObject values) const
{
    for (auto value = values.begin(); value != values.end(); ++value)
        *value = u"none"_s;
    return values;
}

} // namespace velbrix
