#include "foundation/SettingsStore.h"

#include "foundation/Log.h"

#include <cmath>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto writeDelay = 200ms; // a slider that is dragged writes a few times, not at every step
constexpr auto retryDelay = 30s;   // a full disk is not mended sooner

} // namespace

SettingsStore::SettingsStore(std::unique_ptr<SettingsBackend> backend, Clock &clock)
    : _backend(std::move(backend)), _clock(clock), _values(_backend->load())
{
}

SettingsStore::~SettingsStore()
{
    (void)flush();
}

std::optional<bool> SettingsStore::boolean(const QString &key) const
{
    const QJsonValue value = _values.value(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<int> SettingsStore::integer(const QString &key) const
{
    const auto value = real(key);
    if (!value || *value != std::floor(*value) || std::abs(*value) > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(*value);
}

std::optional<double> SettingsStore::real(const QString &key) const
{
    const QJsonValue value = _values.value(key);
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<QString> SettingsStore::string(const QString &key) const
{
    const QJsonValue value = _values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QJsonValue> SettingsStore::json(const QString &key) const
{
    const QJsonValue value = _values.value(key);
    return value.isObject() || value.isArray() ? std::optional(value) : std::nullopt;
}

void SettingsStore::set(const QString &key, const QJsonValue &value)
{
    if (_values.value(key) == value && _values.contains(key))
        return;
    _values.insert(key, value);
    schedule(key);
}

void SettingsStore::remove(const QString &key)
{
    if (!_values.contains(key))
        return;
    _values.remove(key);
    schedule(key);
}

Result<void> SettingsStore::flush()
{
    _write.reset();
    if (_pending.isEmpty())
        return {};
    const Result<void> saved = _backend->save(_values, _pending.values());
    if (saved) {
        _pending.clear();
        _toldFailure.clear();
        return saved;
    }
    _write = _clock.after(retryDelay, [this] { (void)flush(); });
    if (std::exchange(_toldFailure, saved.error().message) != saved.error().message) {
        log::line(u"Velbrix"_s, u"settings not saved: "_s + saved.error().message);
        _failures.notify(saved.error());
    }
    return saved;
}

void SettingsStore::schedule(const QString &key)
{
    _pending.insert(key);
    ++_changes;
    // The first change of a burst sets the time, so that a value which never
    // rests is written too.
    if (!_write)
        _write = _clock.after(writeDelay, [this] { (void)flush(); });
}

} // namespace velbrix
