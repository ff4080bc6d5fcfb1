#include "platform/linux/desktop/LinuxDockPreference.h"

#include "foundation/AtomicFile.h"
#include "platform/linux/dbus/Bus.h"
#include "platform/linux/desktop/PanelSettings.h"

#include <QCoroFuture>
#include <QFile>
#include <QJsonDocument>
#include <QtConcurrent/QtConcurrentRun>

#include <memory>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

struct Dock {
    QString name; // the desktop's key
    std::shared_ptr<PanelSettings> settings;
};

QCoro::Task<Result<Dock>> findDock(Clock &clock, const std::shared_ptr<const DesktopSession> session)
{
    const QStringList services = co_await runningServices();
    for (const Desktop &desktop : desktops()) {
        if (desktop.makePanels && services.contains(desktop.panelService))
            co_return Dock{desktop.key, desktop.makePanels(clock)};
    }
    const QFuture<DesktopSigns> search = QtConcurrent::run([session] { return session->signs(); });
    const DesktopSigns signs = co_await search;
    co_return failure(u"当前桌面（%1）没有可以自动隐藏的 Dock 或面板"_s.arg(signs.name()));
}

// What the bars of each desktop were set to before they were made to hide.
class FormerValues {
public:
    explicit FormerValues(QString path) : _path(std::move(path))
    {
        QFile file(_path);
        if (file.open(QIODevice::ReadOnly))
            _all = QJsonDocument::fromJson(file.read(1 << 20)).object();
    }

    QJsonObject of(const QString &dock) const { return _all.value(dock).toObject(); }
    bool isOnlyOfOthers(const QString &dock) const { return !_all.isEmpty() && !_all.contains(dock); }
    // What is kept already was the user's; what came since joins it.
    Result<void> keep(const QString &dock, const QJsonObject &values)
    {
        QJsonObject kept = values;
        const QJsonObject before = of(dock);
        for (auto value = before.begin(); value != before.end(); ++value)
            kept.insert(value.key(), *value);
        _all.insert(dock, kept);
        return save();
    }
    void forget(const QString &dock)
    {
        _all.remove(dock);
        (void)save(); // the same values again do no harm
    }

private:
    Result<void> save() const
    {
        if (const auto saved = replaceFile(_path, QJsonDocument(_all).toJson()); !saved)
            return failure(u"无法保存面板原来的设置："_s + saved.error().message);
        return {};
    }

    QString _path;
    QJsonObject _all;
};

QJsonObject differing(const QJsonObject &wanted, const QJsonObject &now)
{
    QJsonObject changes;
    for (auto value = wanted.begin(); value != wanted.end(); ++value) {
        if (now.contains(value.key()) && now.value(value.key()) != *value)
            changes.insert(value.key(), *value);
    }
    return changes;
}

QCoro::Task<Result<void>> hide(const Dock dock, FormerValues former)
{
    const auto now = co_await dock.settings->read();
    if (!now)
        co_return std::unexpected(now.error());
    if (dock.settings->hides(*now))
        co_return Result<void>();
    if (const auto kept = former.keep(dock.name, *now); !kept)
        co_return std::unexpected(kept.error());
    co_return co_await dock.settings->write(differing(dock.settings->hidden(*now), *now));
}

QCoro::Task<Result<void>> show(const Dock dock, FormerValues former)
{
    if (former.isOnlyOfOthers(dock.name))
        co_return failure(u"隐藏的是另一个桌面的面板，请登录那个桌面后再恢复"_s);
    const auto now = co_await dock.settings->read();
    if (!now)
        co_return std::unexpected(now.error());
    QJsonObject wanted = dock.settings->shown(*now);
    const QJsonObject before = former.of(dock.name);
    for (auto value = before.begin(); value != before.end(); ++value)
        wanted.insert(value.key(), *value);
    const auto done = co_await dock.settings->write(differing(wanted, *now));
    if (done)
        former.forget(dock.name);
    co_return done;
}

} // namespace

LinuxDockPreference::LinuxDockPreference(Clock &clock, std::shared_ptr<const DesktopSession> session,
                                         QString formerFile)
    : _clock(clock), _session(std::move(session)), _formerFile(std::move(formerFile))
{
}

QCoro::Task<Result<bool>> LinuxDockPreference::autoHide()
{
    const auto dock = co_await findDock(_clock, _session);
    if (!dock)
        co_return std::unexpected(dock.error());
    const auto values = co_await dock->settings->read();
    if (!values)
        co_return std::unexpected(values.error());
    co_return dock->settings->hides(*values);
}

QCoro::Task<Result<void>> LinuxDockPreference::setAutoHide(bool hides)
{
    const QString file = _formerFile;
    const auto dock = co_await findDock(_clock, _session);
    if (!dock)
        co_return std::unexpected(dock.error());
    const FormerValues former(file);
    co_return hides ? co_await hide(*dock, former) : co_await show(*dock, former);
}

} // namespace velbrix
