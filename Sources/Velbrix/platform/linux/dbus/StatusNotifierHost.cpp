#include "platform/linux/dbus/StatusNotifierHost.h"

#include "platform/linux/dbus/Bus.h"

#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const BusObject watcher{.service = u"org.kde.StatusNotifierWatcher"_s,
                        .path = u"/StatusNotifierWatcher"_s,
                        .interface = u"org.kde.StatusNotifierWatcher"_s,
                        .mayStart = false,
                        .deadline = startDeadline};

} // namespace

StatusNotifierHost::StatusNotifierHost(std::function<void()> changed) : _changed(std::move(changed))
{
    const auto bus = busConnection(Bus::session);
    if (!bus)
        return;
    _watcher.setConnection(*bus);
    _watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    _watcher.addWatchedService(watcher.service);
    connect(&_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { ask(); });
    for (const QString &signal : {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        _signals.push_back(observeBus(watcher, signal, [this](const QDBusMessage &) { ask(); }));
    ask();
}

QCoro::Task<> StatusNotifierHost::ask()
{
    const QPointer self(this);
    const quint64 question = ++_question;
    const auto answer = co_await busProperty(watcher, u"IsStatusNotifierHostRegistered"_s);
    // An older question may be answered after a newer one was asked.
    if (!self || question != _question)
        co_return;
    const bool isPresent = answer && answer->toBool();
    if (std::exchange(_isPresent, isPresent) != isPresent)
        _changed();
}

} // namespace velbrix
