#pragma once

#include <QList>
#include <QString>

namespace velbrix {

class Clock;
class SettingsStore;

// Moments at which this program was running, a day apart, kept in the settings.
// By a clock that has jumped ahead everything is old today; what was old at such a
// moment on an earlier day really is.
class SeenTime {
public:
    static inline const QString key = QStringLiteral("VelbClean_SeenAt");

    // Both must outlive it.
    SeenTime(SettingsStore &settings, Clock &clock);

    // The last of them that is at least a day past, in seconds since 1970; 0 when
    // there is none. This moment becomes one, too.
    qint64 dayAgo() const;

private:
    QList<qint64> past() const;
    void note() const;

    SettingsStore &_settings;
    Clock &_clock;
};

} // namespace velbrix
