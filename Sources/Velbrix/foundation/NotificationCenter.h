#pragma once

#include "foundation/Observation.h"

#include <QString>
#include <QVariantMap>

#include <map>

namespace velbrix {

// Named posts inside the program, for those who must not know each other.
// Main thread only.
class NotificationCenter {
public:
    using Observer = std::function<void(const QVariantMap &userInfo)>;

    // Calls every observer of the name before it returns, oldest first.
    void post(const QString &name, const QVariantMap &userInfo = {});
    Observation observe(const QString &name, Observer observer);
    bool hasObserver(const QString &name) const;

private:
    std::map<QString, ObserverList<void(const QVariantMap &)>> _observers; // by name
};

} // namespace velbrix
