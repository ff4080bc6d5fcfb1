#pragma once

#include <QObject>
#include <QSet>
#include <QString>

class QDBusMessage;

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
    void watchLoginSession();
    void followLoginSession(const QString &path);
    void askLoginSession();
    void watchSavers();
    void askSaver(const QString &name, const QString &path);
    void setLocked(bool locked);
    void setSaver(const QString &name, bool active);
    Q_SLOT void sessionChanged(const QDBusMessage &message);
    Q_SLOT void saverChanged(const QDBusMessage &message);

    QString _sessionPath;
    bool _isLocked = false;
    QSet<QString> _activeSavers;
};

} // namespace velbrix
