#pragma once

#include <QList>
#include <QString>

namespace velbrix {

class Clock;
class SettingsStore;

// Moments at which this program was running, a day apart, kept in the settings.
// By a clock that has jumped ahead everything is old today; after a long silence
// only what was old at the last such moment surely is, until another day has passed.
class SeenTime {
public:
    static inline const QString key = QStringLiteral("VelbClean_SeenAt");

    // Both must outlive it.
    SeenTime(SettingsStore &settings, Clock &clock);

    // This moment in seconds since 1970, which becomes one of them; after a long
    // silence the last one that is at least a day past.
    qint64 sureNow() const;

private:
    QList<qint64> past() const;
    void note() const;

    SettingsStore &_settings;
    Clock &_clock;
};

} // namespace velbrix
