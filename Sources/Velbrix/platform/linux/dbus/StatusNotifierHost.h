#pragma once

#include "foundation/Observation.h"

#include <QCoroTask>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <vector>

namespace velbrix {

// Whether the desktop shows tray icons of the StatusNotifierItem protocol:
// a watcher of items has a host. Known a moment after creation. Main thread.
class StatusNotifierHost final : public QObject {
public:
    explicit StatusNotifierHost(std::function<void()> changed);

    bool isPresent() const { return _isPresent; }

private:
    QCoro::Task<> ask();

    const std::function<void()> _changed;
    std::vector<Observation> _signals;
    QDBusServiceWatcher _watcher;
    quint64 _question = 0;
    bool _isPresent = false;
};

} // namespace velbrix
