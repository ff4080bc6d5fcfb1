#include "platform/linux/desktop/LinuxDesktopServices.h"

#include "foundation/Log.h"
#include "platform/linux/dbus/SessionBus.h"
#include "platform/linux/x11/QtX11.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>
#include <QWindow>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

Result<void> openFolder(const QString &folder)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        return failure(u"没有可用的文件管理器，文件位于 "_s + folder);
    return {};
}

Observation whileConnected(const QMetaObject::Connection &connection)
{
    return Observation([connection] { QObject::disconnect(connection); });
}

} // namespace

void LinuxDesktopServices::setAccessoryPresence()
{
    // The program lives on in the tray when its last window closes.
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

void LinuxDesktopServices::resetPresence()
{
    QGuiApplication::setQuitOnLastWindowClosed(true);
}

void LinuxDesktopServices::activate()
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (!window->isVisible() || window->type() != Qt::Window)
            continue;
        window->raise();
        window->requestActivate();
        return;
    }
}

void LinuxDesktopServices::beep()
{
    const auto x11 = qtX11Connection();
    if (!x11)
        return;
    xcb_bell(x11->connection, 0);
    xcb_flush(x11->connection);
}

Result<void> LinuxDesktopServices::revealInFolder(const QString &path)
{
    const QFileInfo file(path);
    const QString folder = file.absolutePath();
    if (!QFileInfo(folder).isDir())
        return failure(u"文件夹不存在："_s + folder);
    const auto bus = sessionBus();
    if (!bus || !file.exists())
        return openFolder(folder);

    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    call.setArguments({QStringList{QUrl::fromLocalFile(file.absoluteFilePath()).toString()}, QString()});
    auto *pending = new QDBusPendingCallWatcher(bus->asyncCall(call), &_trayHost);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, pending, [pending, folder] {
        pending->deleteLater();
        if (!pending->isError())
            return;
        if (const auto opened = openFolder(folder); !opened)
            log::line(u"Velbrix"_s, opened.error().message);
    });
    return {};
}

bool LinuxDesktopServices::hasTrayHost() const
{
    return _trayHost.isPresent();
}

Observation LinuxDesktopServices::observeTrayHost(std::function<void()> changed)
{
    return whileConnected(
        QObject::connect(&_trayHost, &TrayHost::presenceChanged, &_trayHost, std::move(changed)));
}

bool LinuxDesktopServices::prefersReducedMotion() const
{
    return _appearance.prefersReducedMotion();
}

bool LinuxDesktopServices::prefersDarkTheme() const
{
    return _appearance.prefersDark();
}

Observation LinuxDesktopServices::observeTheme(std::function<void()> changed)
{
    return whileConnected(QObject::connect(&_appearance, &DesktopAppearance::preferencesChanged, &_appearance,
                                           std::move(changed)));
}

Observation LinuxDesktopServices::observeUnhide(std::function<void()>)
{
    return Observation(); // nothing of the kind happens here
}

} // namespace velbrix
