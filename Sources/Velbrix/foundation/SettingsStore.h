#pragma once

#include "foundation/Clock.h"
#include "foundation/Observation.h"
#include "foundation/SettingsBackend.h"

#include <QByteArray>
#include <QJsonValue>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

// The user's settings: one value per key, kept in memory and written a moment
// after the first change of a burst. A stored value of another type than the
// one asked for counts as absent. Main thread only.
class SettingsStore {
public:
    SettingsStore(std::unique_ptr<SettingsBackend> backend, Clock &clock);
    // Writes what is still pending.
    ~SettingsStore();

    bool contains(const QString &key) const { return _values.contains(key); }
    std::optional<bool> boolean(const QString &key) const;
    std::optional<int> integer(const QString &key) const;
    std::optional<double> real(const QString &key) const;
    std::optional<QString> string(const QString &key) const;
    // A structured value: an object or a list.
    std::optional<QJsonValue> json(const QString &key) const;

    // A list or object is a structured value.
    void set(const QString &key, const QJsonValue &value);
    void remove(const QString &key);

    // Writes pending changes now. A failed write keeps them pending.
    Result<void> flush();

    // How many values have been changed or removed since the start.
    quint64 changes() const { return _changes; }

    // Called after a write that failed, once for a reason until one succeeds;
    // it is tried again by itself.
    Observation observeFailures(std::function<void(const Failure &)> failed)
    {
        return _failures.add(std::move(failed));
    }

    QString loadProblem() const { return _backend->loadProblem(); }
    // See SettingsBackend::tidy().
    void tidy() { _backend->tidy(); }

private:
    void schedule(const QString &key);

    std::unique_ptr<SettingsBackend> _backend;
    Clock &_clock;
    QJsonObject _values;
    QSet<QString> _pending;
    quint64 _changes = 0;
    QString _toldFailure;
    std::unique_ptr<Alarm> _write;
    ObserverList<void(const Failure &)> _failures;
};

} // namespace velbrix
