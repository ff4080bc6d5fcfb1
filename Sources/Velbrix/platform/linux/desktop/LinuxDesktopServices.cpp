#include "platform/linux/desktop/LinuxDesktopServices.h"

#include "foundation/Log.h"
#include "platform/linux/dbus/Bus.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>
#include <QWindow>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const BusObject fileManager{.service = u"org.freedesktop.FileManager1"_s,
                            .path = u"/org/freedesktop/FileManager1"_s,
                            .interface = u"org.freedesktop.FileManager1"_s,
                            .deadline = startDeadline};

Result<void> openFolder(const QString &folder)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        return failure(u"没有可用的文件管理器，文件位于 "_s + folder);
    return {};
}

// When no file manager can select the file, its folder is opened.
QCoro::Task<> showItem(const QString path)
{
    const QVariantList arguments{QStringList{QUrl::fromLocalFile(path).toString()}, QString()};
    if (co_await callBus(fileManager, u"ShowItems"_s, arguments))
        co_return;
    if (const auto opened = openFolder(QFileInfo(path).absolutePath()); !opened)
        log::line(u"Velbrix"_s, opened.error().message);
}

Observation whileConnected(const QMetaObject::Connection &connection)
{
    return Observation([connection] { QObject::disconnect(connection); });
}

} // namespace

LinuxDesktopServices::LinuxDesktopServices()
    : _itemHost([this] {
          const bool before = hasTrayHost();
          _hasItemHost = _itemHost.isPresent();
          tellObservers(before);
      })
{
}

void LinuxDesktopServices::activate()
{
    if (QWindow *const window = firstWindow()) {
        window->raise();
        window->requestActivate();
    }
}

QWindow *LinuxDesktopServices::firstWindow()
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto found = std::ranges::find_if(
        windows, [](const QWindow *each) { return each->isVisible() && each->type() == Qt::Window; });
    return found != windows.end() ? *found : nullptr;
}

Result<void> LinuxDesktopServices::revealInFolder(const QString &path)
{
    const QFileInfo file(path);
    const QString folder = file.absolutePath();
    if (!QFileInfo(folder).isDir())
        return failure(u"文件夹不存在："_s + folder);
    if (!busConnection(Bus::session) || !file.exists())
        return openFolder(folder);
    showItem(file.absoluteFilePath());
    return {};
}

Result<void> LinuxDesktopServices::openFile(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return failure(u"文件不存在："_s + path);
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        return failure(u"没有可以打开它的程序，文件位于 "_s + path);
    return {};
}

bool LinuxDesktopServices::hasTrayHost() const
{
    return _hasOtherTray || _hasItemHost;
}

Observation LinuxDesktopServices::observeTrayHost(std::function<void()> changed)
{
    return _trayObservers.add(std::move(changed));
}

void LinuxDesktopServices::setOtherTray(bool isPresent)
{
    const bool before = hasTrayHost();
    _hasOtherTray = isPresent;
    tellObservers(before);
}

void LinuxDesktopServices::tellObservers(bool hadTrayHost) const
{
    if (hasTrayHost() != hadTrayHost)
        _trayObservers.notify();
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
    return Observation(); // there is no such event
}

Observation LinuxDesktopServices::observeReopen(std::function<void()>)
{
    return Observation(); // there is no such event
}

} // namespace velbrix
