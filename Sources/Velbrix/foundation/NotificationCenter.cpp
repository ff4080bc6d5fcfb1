#include "foundation/NotificationCenter.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace velbrix {

class NotificationCenter::Entry final : public Observation {
public:
    Entry(NotificationCenter &center, QString name, Observer observer)
        : _center(center), _name(std::move(name)), _observer(std::make_shared<Observer>(std::move(observer)))
    {
        _center._entries.push_back(this);
    }
    ~Entry() override { _center._entries.remove(this); }

    const QString &name() const { return _name; }
    std::shared_ptr<Observer> observer() const { return _observer; }

private:
    NotificationCenter &_center;
    const QString _name;
    const std::shared_ptr<Observer> _observer;
};

NotificationCenter::NotificationCenter() = default;
NotificationCenter::~NotificationCenter() = default;

void NotificationCenter::post(const QString &name, const QVariantMap &userInfo)
{
    std::vector<Entry *> due;
    for (Entry *entry : _entries) {
        if (entry->name() == name)
            due.push_back(entry);
    }
    for (Entry *entry : due) {
        // One observer may have ended the observation of the next.
        if (std::ranges::find(_entries, entry) == _entries.end())
            continue;
        const auto observer = entry->observer();
        (*observer)(userInfo);
    }
}

std::unique_ptr<Observation> NotificationCenter::observe(const QString &name, Observer observer)
{
    return std::make_unique<Entry>(*this, name, std::move(observer));
}

bool NotificationCenter::hasObserver(const QString &name) const
{
    return std::ranges::any_of(_entries, [&](const Entry *entry) { return entry->name() == name; });
}

} // namespace velbrix
