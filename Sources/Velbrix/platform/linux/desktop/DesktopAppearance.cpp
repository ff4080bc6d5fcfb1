#include "platform/linux/desktop/DesktopAppearance.h"

#include "platform/linux/dbus/SessionBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QGuiApplication>
#include <QPalette>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString portalName = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;
const QString appearanceGroup = u"org.freedesktop.appearance"_s;
const QString interfaceGroup = u"org.gnome.desktop.interface"_s;

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace

DesktopAppearance::DesktopAppearance() : _isPaletteDark(isDark(QGuiApplication::palette()))
{
    auto bus = sessionBus();
    if (!bus)
        return;
    // No service name here: Qt would wait for the bus to name its owner.
    bus->connect({}, portalPath, settingsInterface, u"SettingChanged"_s, this, SLOT(ask()));
    ask();
}

void DesktopAppearance::ask()
{
    const auto bus = sessionBus();
    if (!bus)
        return;
    QDBusMessage call =
        QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, u"ReadAll"_s);
    call.setArguments({QStringList{appearanceGroup, interfaceGroup}});
    auto *pending = new QDBusPendingCallWatcher(bus->asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending] {
        pending->deleteLater();
        const QDBusMessage reply = pending->reply();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"a{sa{sv}}"_s)
            return;
        QMap<QString, QVariantMap> groups;
        reply.arguments().constFirst().value<QDBusArgument>() >> groups;
        const QVariantMap appearance = groups.value(appearanceGroup);
        const QVariant animations = groups.value(interfaceGroup).value(u"enable-animations"_s);
        const bool isStill = animations.isValid() && !animations.toBool();
        take(appearance.value(u"color-scheme"_s).toUInt(),
             appearance.value(u"reduced-motion"_s).toUInt() == 1 || isStill);
    });
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
