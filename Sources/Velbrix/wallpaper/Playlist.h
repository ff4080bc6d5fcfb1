#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

class VideoFolder;
class WallpaperPreferences;

// The folder's videos one after the other on the main display: at the user's
// word, or each for a while, which pauses and ends of the program do not make
// longer. In shuffled order each comes once before any comes
// again. Main thread.
class Playlist final : public QObject {
    Q_OBJECT

public:
    struct Acts {
        std::function<bool()> isMoving;   // it shows and does not rest
        std::function<QString()> current; // empty: none
        // True once it is the wallpaper, false when it cannot be played;
        // nothing when another choice has overtaken it.
        std::function<QCoro::Task<std::optional<bool>>(QString path)> play;
    };

    Playlist(VideoFolder &folder, WallpaperPreferences &preferences, Clock &clock, Acts acts,
             QObject *parent = nullptr);
    ~Playlist() override;

    // Passes over what cannot be played, and waits only so long for a scan of
    // the folder. The failure says why nothing follows.
    QCoro::Task<Result<void>> next();
    // The wallpaper has begun, changed, rested or ended.
    void wallpaperChanged();

private:
    QCoro::Task<bool> lookThroughFolder();
    std::optional<QString> following(const QString &path);
    void startTurn();

    VideoFolder &_folder;
    WallpaperPreferences &_preferences;
    Clock &_clock;
    const Acts _acts;
    QStringList _unplayed;        // of the shuffled ones, the next one last
    QString _playing;             // whose turn it is
    int _asked = 0;               // for the next one, and what outdates that
    std::unique_ptr<Alarm> _turn; // while it moves
};

} // namespace velbrix
