#include "platform/linux/desktop/DesktopAppearance.h"

#include "platform/linux/dbus/Bus.h"

#include <QGuiApplication>
#include <QPalette>
#include <QPointer>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const BusObject portal{.service = u"org.freedesktop.portal.Desktop"_s,
                       .path = u"/org/freedesktop/portal/desktop"_s,
                       .interface = u"org.freedesktop.portal.Settings"_s,
                       .deadline = startDeadline};
const QString appearanceGroup = u"org.freedesktop.appearance"_s;
const QString interfaceGroup = u"org.gnome.desktop.interface"_s;

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace

DesktopAppearance::DesktopAppearance() : _isPaletteDark(isDark(QGuiApplication::palette()))
{
    if (!busConnection(Bus::session))
        return;
    _settingChanged = observeBus(portal, u"SettingChanged"_s, [this](const QDBusMessage &) { ask(); });
    ask();
}

QCoro::Task<> DesktopAppearance::ask()
{
    const QPointer self(this);
    const QVariantList arguments{QStringList{appearanceGroup, interfaceGroup}};
    const auto answer = co_await callBus(portal, u"ReadAll"_s, arguments);
    if (!self || !answer)
        co_return;
    const auto settings = answer->value(0).value<QDBusArgument>();
    if (settings.currentSignature() != u"a{sa{sv}}"_s)
        co_return;
    QMap<QString, QVariantMap> groups;
    settings >> groups;
    const QVariantMap appearance = groups.value(appearanceGroup);
    const QVariant animations = groups.value(interfaceGroup).value(u"enable-animations"_s);
    const bool isStill = animations.isValid() && !animations.toBool();
    take(appearance.value(u"color-scheme"_s).toUInt(),
         appearance.value(u"reduced-motion"_s).toUInt() == 1 || isStill);
}

void DesktopAppearance::take(uint colorScheme, bool reducesMotion)
{
    const bool wasDark = prefersDark();
    const bool reducedMotion = _reducesMotion;
    _colorScheme = colorScheme;
    _reducesMotion = reducesMotion;
    if (prefersDark() != wasDark || _reducesMotion != reducedMotion)
        Q_EMIT preferencesChanged();
}

} // namespace velbrix
