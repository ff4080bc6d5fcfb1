#pragma once

#include "wallpaper/StagedVideo.h"
#include "wallpaper/WallpaperContent.h"

#include <QHash>

#include <functional>
#include <map>

namespace velbrix {

class ChosenFiles;
class SoundPolicy;
class StaticDesktop;
class WallpaperPreferences;
class WallpaperVideo;

// Videos as the wallpaper: the chosen one on the main display, where it is
// heard, and on each other display its own, or else the main one, silently, or
// nothing.
class VideoContent final : public WallpaperContent {
    Q_OBJECT

public:
    struct Parts {
        DesktopSurfaces &surfaces;
        WallpaperStage &stage;
        WallpaperVideo &video;
        ChosenFiles &files;
        StaticDesktop &still;
        WallpaperPreferences &preferences;
        const SoundPolicy &sound;
        Clock &clock;
    };

    // In the background the still picture does not follow the video.
    VideoContent(Parts parts, std::function<bool()> isInBackground, QObject *parent = nullptr);
    ~VideoContent() override;

    QString chosen() const override;
    bool canShow() const override;
    bool isLoading() const override;
    QCoro::Task<std::optional<Result<void>>> choose(const QString path) override;
    // The same for another display, which shows it at once if anything shows.
    QCoro::Task<std::optional<Result<void>>> chooseOther(quint32 displayID, const QString path);
    // The display shows the main video again; without one, nothing.
    void clearOther(quint32 displayID);
    // No main video is chosen any more; the others stay. The still picture goes.
    void clearMain();
    QCoro::Task<Result<void>> prepareToShow() override;
    Result<void> show() override;
    void hardResume(const QString &reason) override;
    void displaysChanged() override;
    void stop() override;
    WallpaperReturn returnAtLaunch() const override;
    WallpaperReturn returnAtResume() const override;
    WallpaperReturn returnWithoutFile() const override;

private:
    using Video = std::unique_ptr<StagedVideo>;
    Result<Video> make(const Display &display, VideoEvents events, const StagedVideo::SetUp &setUp);
    QCoro::Task<bool> lookForOthers();
    bool hasOthers() const;
    bool isUsed(const Display &display) const;
    bool wantsStill() const;
    void followDisplays();
    Result<void> setUpMain();
    void showOthers();
    void showOther(const Display &display, const QString &path);
    void dropOther(quint32 displayID, const QString &reason);
    void forEach(const std::function<void(StagedVideo &)> &call) const;
    QCoro::Task<> setFirstFrame(QString reason);
    QCoro::Task<bool> findFirstFrame(QString path);
    // Has the still picture follow what shows; the reason is for the log.
    void refreshStill(const QString &reason);
    QCoro::Task<> setShownFrame();

    const Parts _parts;
    const std::function<bool()> _isInBackground;
    Video _main;
    std::map<quint32, Video> _others;
    QHash<quint32, int> _choices; // of each other display, counted
    bool _isMainMissing = false;
    bool _hasStill = false; // wanted when it was last set
    int _stillGeneration = 0;
};

} // namespace velbrix
