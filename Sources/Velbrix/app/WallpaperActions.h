#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace velbrix {

class PrivacyManager;
class WallpaperController;

// What the user can do with the wallpaper, each with the consent it needs.
// Shared by page, hot key, tray and command line.
class WallpaperActions final : public QObject {
    Q_OBJECT

public:
    WallpaperActions(WallpaperController &wallpaper, PrivacyManager &privacy, QObject *parent = nullptr);

    // Nothing is played before the first launch's statement is accepted: then
    // these only ask for the statement.

    // For the main display; shows it at once.
    void playVideo(const QString &path);
    // For one display; a wallpaper that is not showing starts with it.
    void playVideoOn(quint32 displayID, const QString &path);
    // For the display that is chosen as the target, else the main one.
    void playChosenVideo(const QString &path);
    void play();
    void togglePlayPause();
    // Need no consent.
    void pause();
    void stop();

Q_SIGNALS:
    // The user wants a wallpaper and has not accepted the statement yet.
    void statementNeeded();

private:
    void guarded(std::function<void()> act);

    WallpaperController &_wallpaper;
    PrivacyManager &_privacy;
};

} // namespace velbrix
