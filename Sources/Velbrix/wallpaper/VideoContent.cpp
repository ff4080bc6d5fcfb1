#include "wallpaper/VideoContent.h"

#include "foundation/Awaitables.h"
#include "wallpaper/StaticDesktop.h"
#include "wallpaper/WallpaperLog.h"
#include "wallpaper/WallpaperPreferences.h"
#include "wallpaper/WallpaperVideo.h"

#include <QFileInfo>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {

using wallpaperlog::say;

namespace {

constexpr auto timeInterval = 12s;
// The picture under the windows should be there before they move, but a slow
// disk must not hold the wallpaper up.
constexpr auto firstFrameLimit = 1s;

QString decimal(double value)
{
    const QString text = QString::number(value);
    return text.contains(u'.') ? text : text + u".0"_s;
}

} // namespace

VideoContent::VideoContent(Parts parts, std::function<bool()> isInBackground, QObject *parent)
    : WallpaperContent(parent), _parts(parts), _isInBackground(std::move(isInBackground))
{
    const WallpaperPreferences &preferences = _parts.preferences;
    const auto all = [this](auto change) { return [this, change] { forEach(change); }; };
    const auto sound = [this] {
        if (_main)
            _main->surface().setVolume(_parts.preferences.audibleVolume());
    };
    connect(&preferences, &WallpaperPreferences::volumeChanged, this, sound);
    connect(&preferences, &WallpaperPreferences::isMutedChanged, this, sound);
    connect(&preferences, &WallpaperPreferences::gravityChanged, this, all([&preferences](StagedVideo &one) {
        one.surface().setGravity(layerGravity(preferences.gravity()));
    }));
    connect(&preferences, &WallpaperPreferences::speedChanged, this,
            all([&preferences](StagedVideo &one) { one.setRate(clampedSpeed(preferences.speed())); }));
    connect(&_parts.video, &WallpaperVideo::videoURLChanged, this, &VideoContent::chosenChanged);
    connect(&_parts.video, &WallpaperVideo::isLoadingChanged, this, &VideoContent::isLoadingChanged);
}

VideoContent::~VideoContent() = default;

QString VideoContent::chosen() const
{
    return _parts.video.videoURL().value_or(QString());
}

bool VideoContent::canShow() const
{
    return _parts.video.videoURL() || _parts.preferences.lastVideoPath() ||
           !_parts.preferences.perDisplayVideoPaths().isEmpty();
}

bool VideoContent::isLoading() const
{
    return _parts.video.isLoading();
}

QCoro::Task<std::optional<Result<void>>> VideoContent::choose(const QString path)
{
    const QPointer self(this);
    _parts.surfaces.prepare();
    const auto loaded = co_await _parts.video.load(path);
    if (!self || !loaded || !*loaded)
        co_return loaded;
    _parts.preferences.setLastVideoPath(path);
    if (!_main)
        co_return loaded;
    const auto shown = show();
    setFirstFrame(u"setVideo"_s);
    co_return shown;
}

QCoro::Task<Result<void>> VideoContent::prepareToShow()
{
    const QPointer self(this);
    std::optional<QString> prepared;
    // Another video may be chosen while the picture is awaited.
    for (auto path = _parts.video.videoURL(); path && path != prepared; path = _parts.video.videoURL()) {
        if (!QFileInfo(*path).isFile())
            co_return failure(u"无法读取视频：文件不存在"_s);
        prepared = path;
        co_await setFirstFrame(u"apply-video"_s);
        if (!self)
            break;
    }
    co_return {};
}

Result<void> VideoContent::show()
{
    const auto path = _parts.video.videoURL();
    if (path) {
        if (const auto made = setUpMain(); !made) {
            // The still picture has come before the windows.
            if (!_parts.stage.isShowing()) {
                ++_stillGeneration;
                _parts.still.putBack();
            }
            return made;
        }
        _main->show(*path);
    }
    showOthers();
    if (!_parts.stage.isShowing())
        return failure(u"请先选择一个视频"_s);
    return {};
}

Result<VideoContent::Video> VideoContent::make(const Display &display, VideoEvents events)
{
    auto video = StagedVideo::create(_parts.surfaces, _parts.stage, display, std::move(events), _parts.clock);
    if (video) {
        (*video)->surface().setGravity(layerGravity(_parts.preferences.gravity()));
        (*video)->setRate(clampedSpeed(_parts.preferences.speed()));
    }
    return video;
}

Result<void> VideoContent::setUpMain()
{
    if (_main)
        return {};
    const auto display = _parts.stage.mainDisplay();
    if (!display)
        return failure(u"没有检测到显示器"_s);
    VideoEvents events;
    events.failed = [this](const Failure &reason) { Q_EMIT failed(u"无法读取视频："_s + reason.message); };
    events.time = [this] {
        if (_main->window().isActive() && !_isInBackground())
            refreshStill(u"time"_s);
    };
    auto made = make(*display, std::move(events));
    if (!made)
        return std::unexpected(made.error());
    _main = std::move(*made);
    _main->surface().setVolume(_parts.preferences.audibleVolume());
    _main->surface().observeTime(timeInterval);
    return {};
}

void VideoContent::showOthers()
{
    const DisplayVideoPaths paths = _parts.preferences.perDisplayVideoPaths();
    std::map<quint32, Video> gone = std::exchange(_others, {});
    const auto displays = _parts.stage.otherDisplays();
    for (const Display &display : displays) {
        const auto own = paths.constFind(display.id);
        const bool hasOwn = own != paths.constEnd() && QFileInfo::exists(*own);
        if (!hasOwn && !_main)
            continue;
        if (auto kept = gone.extract(display.id))
            _others.insert(std::move(kept));
        showOther(display, hasOwn ? *own : _main->path());
    }
}

void VideoContent::showOther(const Display &display, const QString &path)
{
    const quint32 id = display.id;
    if (!_others.contains(id)) {
        VideoEvents events;
        events.failed = [this, id](const Failure &reason) { dropOther(id, reason.message); };
        auto made = make(display, std::move(events));
        if (!made)
            return dropOther(id, made.error().message);
        // Only the main display is ever heard.
        (*made)->surface().setVolume(0);
        _others.emplace(id, std::move(*made));
    }
    StagedVideo &video = *_others.at(id);
    video.window().fitTo(display);
    video.show(path);
}

void VideoContent::dropOther(quint32 displayID, const QString &reason)
{
    _others.erase(displayID);
    Q_EMIT partFailed(u"副显示器的视频无法播放："_s + reason);
}

void VideoContent::hardResume(const QString &reason)
{
    if (_main)
        _main->window().bringToFront();
    _parts.stage.applyWindowLayering();
    say(u"hardResume ok (%1) rate=%2"_s.arg(reason, decimal(clampedSpeed(_parts.preferences.speed()))));
    refreshStill(u"hardResume"_s);
}

void VideoContent::displaysChanged()
{
    if (const auto display = _parts.stage.mainDisplay(); display && _main)
        _main->window().fitTo(*display);
    showOthers();
    _parts.stage.applyWindowLayering();
}

void VideoContent::stop()
{
    _parts.video.cancelLoad();
    ++_stillGeneration;
    _main.reset();
    _others.clear();
}

void VideoContent::forEach(const std::function<void(StagedVideo &)> &call) const
{
    if (_main)
        call(*_main);
    for (const auto &[id, video] : _others)
        call(*video);
}

QCoro::Task<> VideoContent::setFirstFrame(QString reason)
{
    say(u"static desktop ← video frame (%1)"_s.arg(reason));
    auto search = findFirstFrame(chosen());
    co_await withDeadline(_parts.clock, firstFrameLimit, std::move(search));
}

// One that comes late is set then.
QCoro::Task<bool> VideoContent::findFirstFrame(QString path)
{
    const QPointer self(this);
    const int generation = ++_stillGeneration;
    const auto frame = co_await _parts.video.frameAt(path, 0);
    const bool isWanted = self && generation == _stillGeneration && frame.has_value();
    if (isWanted)
        _parts.still.setStaticDesktop(*frame);
    co_return isWanted;
}

void VideoContent::refreshStill(const QString &reason)
{
    if (!_parts.video.videoURL()) {
        say(u"static desktop skip (%1): no video"_s.arg(reason));
        return;
    }
    say(u"static desktop ← video frame (%1)"_s.arg(reason));
    setShownFrame();
}

QCoro::Task<> VideoContent::setShownFrame()
{
    if (!_main) {
        say(u"提取帧失败:壁纸没有在播放"_s);
        co_return;
    }
    const QPointer self(this);
    const int generation = _stillGeneration;
    const auto frame = co_await _main->surface().currentFrame();
    if (!frame)
        say(u"提取帧失败:"_s + frame.error().message);
    else if (self && generation == _stillGeneration)
        _parts.still.setStaticDesktop(*frame);
}

WallpaperReturn VideoContent::returnAtLaunch() const
{
    using Step = WallpaperReturn::Step;
    WallpaperReturn back;
    const auto last = _parts.preferences.lastVideoPath();
    // A file that has gone is passed over.
    if (_parts.video.videoURL()) {
        back.log << u"autoRestore apply current videoURL"_s;
        if (QFileInfo(chosen()).isFile())
            back.step = Step::show;
    } else if (last) {
        back.log << u"autoRestore load last path: "_s + *last;
        if (QFileInfo(*last).isFile()) {
            back.step = Step::load;
            back.what = *last;
        }
    } else {
        back.log << u"autoRestore: no last video path"_s;
        if (const auto count = _parts.preferences.perDisplayVideoPaths().size(); count > 0) {
            back.step = Step::othersOnly;
            back.log << u"autoRestore secondary-only paths count=%1"_s.arg(count);
        }
    }
    return back;
}

WallpaperReturn VideoContent::returnAtResume() const
{
    WallpaperReturn back;
    const auto last = _parts.preferences.lastVideoPath();
    if (!last) {
        back.step = WallpaperReturn::Step::show;
    } else if (QFileInfo(*last).isFile()) {
        back.step = WallpaperReturn::Step::load;
        back.what = *last;
    } else {
        back.hint = u"上次的视频已不在原处，请重新选择：%1"_s.arg(QFileInfo(*last).fileName());
    }
    return back;
}

} // namespace velbrix
