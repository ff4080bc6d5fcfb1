#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <list>
#include <memory>

namespace velbrix {

// Keeps one observer registered; destroying it ends the observation.
class Observation {
public:
    virtual ~Observation() = default;
};

// Named posts inside the program, for those who must not know each other.
// Main thread only. The centre must outlive its observations.
class NotificationCenter {
public:
    using Observer = std::function<void(const QVariantMap &userInfo)>;

    NotificationCenter();
    ~NotificationCenter();

    // Calls every observer of the name before it returns, oldest first. An
    // observer may end any observation, its own included, while it is called.
    void post(const QString &name, const QVariantMap &userInfo = {});
    [[nodiscard]] std::unique_ptr<Observation> observe(const QString &name, Observer observer);
    bool hasObserver(const QString &name) const;

private:
    class Entry;
    std::list<Entry *> _entries;
};

} // namespace velbrix
