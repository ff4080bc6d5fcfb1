#pragma once

#include "foundation/Clock.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

namespace velbrix {

class StaticDesktop;
class VideoSurfaces;
class WallpaperVideo;

// Makes the still desktop picture follow the video, so that menu bar and
// panels look like what is shown.
class VideoStill final : public QObject {
    Q_OBJECT

public:
    VideoStill(WallpaperVideo &video, VideoSurfaces &surfaces, StaticDesktop &desktop, Clock &clock,
               QObject *parent = nullptr);

    // The video's first picture, for one that is about to show. Answers when
    // it is set, or after a second; it is set then when it comes. The reason
    // is only for the log.
    QCoro::Task<> setFirstFrame(const QString path, const QString reason);
    // The picture on show.
    void refreshStaticDesktop(const QString &reason);
    // What is still on its way comes too late.
    void cancel() { ++_generation; }

private:
    QCoro::Task<bool> findFirstFrame(QString path);
    QCoro::Task<> setShownFrame();

    WallpaperVideo &_video;
    VideoSurfaces &_surfaces;
    StaticDesktop &_desktop;
    Clock &_clock;
    int _generation = 0;
};

} // namespace velbrix
