#include "wallpaper/VideoStill.h"

#include "foundation/Awaitables.h"
#include "wallpaper/StaticDesktop.h"
#include "wallpaper/VideoSurfaces.h"
#include "wallpaper/WallpaperLog.h"
#include "wallpaper/WallpaperVideo.h"

#include <QPointer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {

using wallpaperlog::say;

namespace {

// The picture under the windows should be there before they move, but a slow
// disk must not hold the wallpaper up.
constexpr auto firstFrameLimit = 1s;

} // namespace

VideoStill::VideoStill(WallpaperVideo &video, VideoSurfaces &surfaces, StaticDesktop &desktop, Clock &clock,
                       QObject *parent)
    : QObject(parent), _video(video), _surfaces(surfaces), _desktop(desktop), _clock(clock)
{
}

QCoro::Task<> VideoStill::setFirstFrame(const QString path, const QString reason)
{
    say(u"static desktop ← video frame (%1)"_s.arg(reason));
    auto search = findFirstFrame(path);
    co_await withDeadline(_clock, firstFrameLimit, std::move(search));
}

QCoro::Task<bool> VideoStill::findFirstFrame(QString path)
{
    const QPointer self(this);
    const int generation = ++_generation;
    const auto frame = co_await _video.frameAt(path, 0);
    const bool isWanted = self && generation == _generation && frame.has_value();
    if (isWanted)
        _desktop.setStaticDesktop(*frame);
    co_return isWanted;
}

void VideoStill::refreshStaticDesktop(const QString &reason)
{
    if (!_video.videoURL()) {
        say(u"static desktop skip (%1): no video"_s.arg(reason));
        return;
    }
    say(u"static desktop ← video frame (%1)"_s.arg(reason));
    setShownFrame();
}

QCoro::Task<> VideoStill::setShownFrame()
{
    const QPointer self(this);
    const int generation = _generation;
    const auto frame = co_await _surfaces.mainFrame();
    if (!frame)
        say(u"提取帧失败:"_s + frame.error().message);
    else if (self && generation == _generation)
        _desktop.setStaticDesktop(*frame);
}

} // namespace velbrix
