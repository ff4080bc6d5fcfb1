#pragma once

#include "foundation/Observation.h"

#include <QCoroTask>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>
#include <QString>

#include <vector>

namespace velbrix {

// Whether the session is locked or its screen saver shows, as the login
// manager and the desktop's screen savers say. None of them is started for
// this. Known a moment after creation. Main thread.
class SessionLock final : public QObject {
    Q_OBJECT

public:
    SessionLock();

    bool isLocked() const { return _isLocked || !_activeSavers.isEmpty(); }
    Q_SIGNAL void changed();

private:
    QCoro::Task<> followLoginSession();
    QCoro::Task<> askLoginSession(const QString path);
    void followSavers();
    QCoro::Task<> askSaver(const QString service, const QString path);
    void setLocked(bool locked);
    void setSaver(const QString &service, bool active);

    std::vector<Observation> _signals;
    QDBusServiceWatcher _saverEnds;
    bool _isLocked = false;
    QSet<QString> _activeSavers;
};

} // namespace velbrix
