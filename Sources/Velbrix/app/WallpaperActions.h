#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace velbrix {

class PrivacyManager;
class WallpaperController;

// What the user can do with the wallpaper, each with the consent it needs.
// Shared by page, hot key, tray and command line.
class WallpaperActions final : public QObject {
    Q_OBJECT

public:
    // Fails when nothing was chosen or begun. A video can be chosen and yet not
    // show, on battery for one: then the value says why; else it is empty.
    using Outcome = Result<QString>;

    WallpaperActions(WallpaperController &wallpaper, PrivacyManager &privacy, Clock &clock,
                     QObject *parent = nullptr);

    // Nothing is played before the first launch's statement is accepted: then
    // these only ask for the statement. Without consent they answer at once
    // that it is missing, and act when the user has given it.

    // For the main display; shows it at once. The first one of all is silent
    // until the user has said how loud it is to be.
    QCoro::Task<Outcome> playVideo(const QString &path);
    // For one display; a wallpaper that is not showing starts with it.
    QCoro::Task<Outcome> playVideoOn(quint32 displayID, const QString &path);
    // For the display that is chosen as the target, else the main one.
    QCoro::Task<Outcome> playChosenVideo(const QString &path);
    QCoro::Task<Outcome> play();
    // The next one of the folder, on the main display.
    QCoro::Task<Outcome> playNext();
    void togglePlayPause();
    // Need no consent.
    void pause();
    void stop();

    // The last wallpaper returns 1.5 s from now, unless the user plays or stops one
    // before, or the last start has died of it.
    void scheduleRestore();
    // At the end of the program.
    void shutDown();

Q_SIGNALS:
    // The start's restore has been asked for.
    void restored();

private:
    struct Act {
        std::function<QCoro::Task<Outcome>()> run;
        bool isChoice = false;
        std::optional<quint32> displayID = {}; // of a choice; nothing for the main one
    };
    QCoro::Task<Outcome> guarded(Act act);
    void awaitConsent(Act act);
    QCoro::Task<> runWaiting();
    void beginChoice();
    QCoro::Task<Outcome> showVideo(QString path);
    QCoro::Task<Outcome> showVideoOn(quint32 displayID, QString path);
    QCoro::Task<Outcome> showNext();
    QCoro::Task<Outcome> start();
    QString reason() const;
    void restoreWallpaper(const QString &reason);
    void endReturn();

    WallpaperController &_wallpaper;
    PrivacyManager &_privacy;
    Clock &_clock;
    // For the consent: the newest choice for each display, else to play.
    std::vector<Act> _waiting;
    std::unique_ptr<Alarm> _restore;
    std::unique_ptr<Alarm> _survival; // of what has come back
};

} // namespace velbrix
