#pragma once

#include "foundation/Clock.h"

#include <QObject>

#include <memory>

namespace velbrix {

class AppServices;

// What has to come to its end before the program may: the wallpaper gives the
// user's own desktop back, a recording is completed, a clean, a backup or an
// uninstall stops after the step it is at. Nothing of it may keep the program
// for long, but for a package manager: it is never left alone in mid-work.
class QuitSequence final : public QObject {
    Q_OBJECT

public:
    explicit QuitSequence(AppServices &services, QObject *parent = nullptr);
    ~QuitSequence() override;

    // Once. finished() may come before it returns.
    void begin();
    // Only what can be done without waiting; safe at any time, also twice.
    void stopWallpaper();

Q_SIGNALS:
    void finished();

private:
    void observe();
    void stopMaintenance();
    bool isMaintenanceDone() const;
    bool isDone() const;
    void finishAtLimit();
    void finishWhenDone();
    void finish();

    AppServices &_services;
    bool _hasStoppedWallpaper = false;
    bool _isFinished = false;
    std::unique_ptr<Alarm> _limit;
};

} // namespace velbrix
