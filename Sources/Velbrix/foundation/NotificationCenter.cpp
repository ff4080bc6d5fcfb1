#include "foundation/NotificationCenter.h"

#include <utility>

namespace velbrix {

void NotificationCenter::post(const QString &name, const QVariantMap &userInfo)
{
    if (const auto found = _observers.find(name); found != _observers.end())
        found->second.notify(userInfo);
}

Observation NotificationCenter::observe(const QString &name, Observer observer)
{
    return _observers[name].add(std::move(observer));
}

bool NotificationCenter::hasObserver(const QString &name) const
{
    const auto found = _observers.find(name);
    return found != _observers.end() && !found->second.isEmpty();
}

} // namespace velbrix
