#include "maintenance/cleanup/SeenTime.h"

#include "foundation/Clock.h"
#include "foundation/SettingsStore.h"

#include <QJsonArray>

#include <chrono>

using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr std::chrono::seconds day = 24h;
// Longer than people are usually without the program; what jumps less costs little.
constexpr std::chrono::seconds longestSilence = 8 * day;

} // namespace

SeenTime::SeenTime(SettingsStore &settings, Clock &clock) : _settings(settings), _clock(clock)
{
    // The first moment is of use from the first cleaning on.
    if (!past().isEmpty())
        note();
}

qint64 SeenTime::sureNow() const
{
    note();
    const qint64 now = _clock.now().toSecsSinceEpoch();
    for (const qint64 moment : past()) {
        if (now - moment >= day.count())
            return now - moment <= longestSilence.count() ? now : moment;
    }
    return now;
}

// The last first; none that a clock which has been put right since was ahead at.
QList<qint64> SeenTime::past() const
{
    const qint64 now = _clock.now().toSecsSinceEpoch();
    QList<qint64> moments;
    const QJsonArray stored = _settings.json(key).value_or(QJsonValue()).toArray();
    for (const auto &value : stored) {
        if (const qint64 moment = value.toInteger(); moment > 0 && moment <= now)
            moments.append(moment);
    }
    return moments;
}

void SeenTime::note() const
{
    const qint64 now = _clock.now().toSecsSinceEpoch();
    const QList<qint64> moments = past();
    if (moments.isEmpty())
        _settings.set(key, QJsonArray{now});
    else if (now - moments.first() >= day.count())
        _settings.set(key, QJsonArray{now, moments.first()});
}

} // namespace velbrix
