#pragma once

#include "foundation/Clock.h"

#include <QObject>

#include <memory>

namespace velbrix {

class AppServices;

// What has to come to its end before the program may: the wallpaper gives the
// user's own desktop back, a recording is completed. Nothing of it may keep
// the program for long.
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
    bool isDone() const;
    void finishWhenDone();
    void finish();

    AppServices &_services;
    bool _hasStoppedWallpaper = false;
    bool _isFinished = false;
    std::unique_ptr<Alarm> _limit;
};

} // namespace velbrix
