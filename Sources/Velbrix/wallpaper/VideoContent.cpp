#include "wallpaper/VideoContent.h"

#include "foundation/Awaitables.h"
#include "wallpaper/ChosenFiles.h"
#include "wallpaper/SoundPolicy.h"
#include "wallpaper/StaticDesktop.h"
#include "wallpaper/WallpaperLog.h"
#include "wallpaper/WallpaperPreferences.h"
#include "wallpaper/WallpaperVideo.h"

#include <QFileInfo>
#include <QPointer>

#include <algorithm>
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
// So must the file of another display not.
constexpr auto lookLimit = 1s;

QString goneWords(const QString &path)
{
    return u"上次的视频已不在原处，请重新选择：%1"_s.arg(QFileInfo(path).fileName());
}

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
            _main->surface().setVolume(_parts.sound.volume());
    };
    connect(&_parts.sound, &SoundPolicy::volumeChanged, this, sound);
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
    _parts.files.look(path);
    _isMainMissing = false;
    if (!_parts.stage.isShowing())
        co_return loaded;
    // Its name may stand for another video by now.
    forEach([&path](StagedVideo &video) {
        if (video.path() == path)
            video.forget();
    });
    const auto shown = show();
    setFirstFrame(u"setVideo"_s);
    co_return shown;
}

QCoro::Task<std::optional<Result<void>>> VideoContent::chooseOther(quint32 displayID, const QString path)
{
    const QPointer self(this);
    const int choice = ++_choices[displayID];
    _parts.surfaces.prepare();
    const auto problem = co_await _parts.video.problem(path);
    if (!self || choice != _choices.value(displayID))
        co_return std::nullopt;
    if (problem)
        co_return std::unexpected(*problem);
    co_await _parts.files.look(path);
    if (!self || choice != _choices.value(displayID))
        co_return std::nullopt;
    if (const auto shown = _others.find(displayID); shown != _others.end())
        shown->second->forget();
    _parts.preferences.setDisplayVideoPath(displayID, path);
    _parts.preferences.setDisplayUsed(displayID, true);
    if (_parts.stage.isShowing())
        showOthers();
    co_return Result<void>();
}

void VideoContent::clearOther(quint32 displayID)
{
    ++_choices[displayID];
    _parts.preferences.setDisplayVideoPath(displayID, std::nullopt);
    _parts.preferences.setDisplayUsed(displayID, true);
}

void VideoContent::clearMain()
{
    const bool wasShowing = _parts.stage.isShowing();
    _parts.video.forget();
    _parts.preferences.setLastVideoPath(std::nullopt);
    ++_stillGeneration;
    _main.reset();
    _parts.still.putBack();
    if (wasShowing)
        showOthers();
}

bool VideoContent::isUsed(const Display &display) const
{
    return !_parts.preferences.unusedDisplays().contains(display.id);
}

// All displays get the same one; a display without a wallpaper shows the user's
// own, so then all do.
bool VideoContent::wantsStill() const
{
    const auto displays = _parts.stage.otherDisplays();
    return std::ranges::all_of(displays, [this](const Display &display) { return isUsed(display); });
}

bool VideoContent::hasOthers() const
{
    const DisplayVideoPaths paths = _parts.preferences.perDisplayVideoPaths();
    const auto displays = _parts.stage.otherDisplays();
    return std::ranges::any_of(displays, [&](const Display &display) {
        return isUsed(display) && paths.contains(display.id) && _parts.files.isFound(paths.value(display.id));
    });
}

// What is found late is shown then.
QCoro::Task<bool> VideoContent::lookForOthers()
{
    const QPointer self(this);
    const DisplayVideoPaths paths = _parts.preferences.perDisplayVideoPaths();
    bool isNews = false;
    for (const QString &path : paths) {
        const bool wasFound = _parts.files.isFound(path);
        co_await _parts.files.look(path);
        if (!self)
            co_return false;
        isNews = isNews || wasFound != _parts.files.isFound(path);
    }
    if (isNews && _parts.stage.isShowing())
        showOthers();
    co_return true;
}

QCoro::Task<Result<void>> VideoContent::prepareToShow()
{
    const QPointer self(this);
    auto search = lookForOthers();
    // The main display's does not wait for others that are slow.
    if (_parts.video.videoURL())
        co_await withDeadline(_parts.clock, lookLimit, std::move(search));
    else
        co_await search;
    std::optional<QString> prepared;
    // Another video may be chosen while the picture is awaited.
    while (self && _parts.video.videoURL() && _parts.video.videoURL() != prepared) {
        prepared = _parts.video.videoURL();
        const auto isThere = co_await _parts.files.look(*prepared);
        if (!self)
            break;
        _isMainMissing = !isThere.value_or(false);
        if (!_isMainMissing)
            co_await setFirstFrame(u"apply-video"_s);
        else if (!hasOthers())
            co_return failure(u"无法读取视频："_s + (isThere ? u"文件不存在"_s : isThere.error().message));
    }
    co_return {};
}

Result<void> VideoContent::show()
{
    const auto path = _parts.video.videoURL();
    if (path && !_isMainMissing) {
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
    if (path && _isMainMissing)
        Q_EMIT partFailed(goneWords(*path));
    return {};
}

Result<VideoContent::Video> VideoContent::make(const Display &display, VideoEvents events,
                                               const StagedVideo::SetUp &setUp)
{
    auto video = StagedVideo::create(
        _parts.surfaces, _parts.stage, display, std::move(events),
        [this, setUp](VideoSurface &surface) {
            surface.setGravity(layerGravity(_parts.preferences.gravity()));
            setUp(surface);
        },
        _parts.clock);
    if (video)
        (*video)->setRate(clampedSpeed(_parts.preferences.speed()));
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
    events.failed = [this](const Failure &reason) {
        _parts.files.look(chosen());
        Q_EMIT failed(u"无法读取视频："_s + reason.message);
    };
    events.time = [this] {
        if (_main->window().isActive() && !_isInBackground())
            refreshStill(u"time"_s);
    };
    auto made = make(*display, std::move(events), [this](VideoSurface &surface) {
        surface.setVolume(_parts.sound.volume());
        surface.observeTime(timeInterval);
    });
    if (!made)
        return std::unexpected(made.error());
    _main = std::move(*made);
    return {};
}

void VideoContent::showOthers()
{
    const DisplayVideoPaths paths = _parts.preferences.perDisplayVideoPaths();
    std::map<quint32, Video> gone = std::exchange(_others, {});
    const auto displays = _parts.stage.otherDisplays();
    for (const Display &display : displays) {
        const auto own = paths.constFind(display.id);
        const bool hasOwn = own != paths.constEnd() && _parts.files.isFound(*own);
        if (!isUsed(display) || (!hasOwn && !_main))
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
        // Only the main display is ever heard.
        auto made = make(display, std::move(events), [](VideoSurface &surface) { surface.setVolume(0); });
        if (!made)
            return dropOther(id, made.error().message);
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
    forEach([](StagedVideo &video) { video.hardResume(); });
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
    lookForOthers();
    _parts.stage.applyWindowLayering();
    followDisplays();
}

void VideoContent::followDisplays()
{
    if (!_main || wantsStill() == _hasStill)
        return;
    if (!_hasStill)
        return refreshStill(u"displays"_s);
    _hasStill = false;
    ++_stillGeneration;
    _parts.still.putBack();
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
    _hasStill = wantsStill();
    if (!_hasStill)
        co_return;
    say(u"static desktop ← video frame (%1)"_s.arg(reason));
    auto search = findFirstFrame(chosen());
    co_await withDeadline(_parts.clock, firstFrameLimit, std::move(search));
}

// Answers when it is on the desktop. One that comes late is set then.
QCoro::Task<bool> VideoContent::findFirstFrame(QString path)
{
    const QPointer self(this);
    const int generation = ++_stillGeneration;
    const auto frame = co_await _parts.video.frameAt(path, 0);
    if (!self || generation != _stillGeneration || !frame)
        co_return false;
    StaticDesktop &still = _parts.still;
    still.setStaticDesktop(*frame);
    while (still.isWorking())
        co_await nextSignal(still, &StaticDesktop::isWorkingChanged);
    co_return true;
}

void VideoContent::refreshStill(const QString &reason)
{
    if (!_parts.video.videoURL()) {
        say(u"static desktop skip (%1): no video"_s.arg(reason));
        return;
    }
    _hasStill = wantsStill();
    if (!_hasStill)
        return;
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
    if (const auto last = _parts.preferences.lastVideoPath(); _parts.video.videoURL()) {
        back = {Step::show, chosen(), {u"autoRestore apply current videoURL"_s}, {}};
    } else if (last) {
        back = {Step::load, *last, {u"autoRestore load last path: "_s + *last}, {}};
    } else {
        back = returnWithoutFile();
        back.log.prepend(u"autoRestore: no last video path"_s);
    }
    return back;
}

WallpaperReturn VideoContent::returnWithoutFile() const
{
    const auto count = _parts.preferences.perDisplayVideoPaths().size();
    if (count == 0)
        return {};
    return {WallpaperReturn::Step::show, {}, {u"autoRestore secondary-only paths count=%1"_s.arg(count)}, {}};
}

WallpaperReturn VideoContent::returnAtResume() const
{
    const auto last = _parts.preferences.lastVideoPath();
    if (!last)
        return {WallpaperReturn::Step::show, {}, {}, {}};
    return {WallpaperReturn::Step::load, *last, {}, goneWords(*last)};
}

} // namespace velbrix
