#include "wallpaper/Playlist.h"

#include "foundation/Clock.h"
#include "foundation/FileThreads.h"
#include "wallpaper/VideoFolder.h"
#include "wallpaper/WallpaperLog.h"
#include "wallpaper/WallpaperPreferences.h"

#include <QPointer>
#include <QRandomGenerator>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// A folder of broken files must not be read to its end.
constexpr int mostAttempts = 10;

constexpr auto glance = 200ms;

} // namespace

Playlist::Playlist(VideoFolder &folder, WallpaperPreferences &preferences, Clock &clock, Acts acts,
                   QObject *parent)
    : QObject(parent), _folder(folder), _preferences(preferences), _clock(clock), _acts(std::move(acts))
{
    connect(&_preferences, &WallpaperPreferences::playlistMinutesChanged, this, [this] {
        _turn.reset();
        wallpaperChanged();
    });
    connect(&_preferences, &WallpaperPreferences::isPlaylistShuffledChanged, this,
            [this] { _unplayed.clear(); });
}

Playlist::~Playlist() = default;

QCoro::Task<Result<void>> Playlist::next()
{
    const QPointer self(this);
    if (!_preferences.wallpaperFolder())
        co_return failure(u"还没有选择壁纸文件夹"_s);
    const int asked = ++_asked;
    const bool isComplete = co_await lookThroughFolder();
    // Stopped meanwhile, or asked once more.
    if (!self || asked != _asked)
        co_return Result<void>();
    QString path = _acts.current();
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const auto found = following(path);
        if (!found)
            break;
        path = *found;
        const auto isPlaying = co_await _acts.play(path);
        if (!self || !isPlaying || *isPlaying)
            co_return Result<void>();
    }
    if (!isComplete)
        co_return failure(u"壁纸文件夹还没有扫描完，请稍后再试"_s);
    if (!_folder.problem().isEmpty())
        co_return failure(_folder.problem());
    co_return failure(u"壁纸文件夹里没有其他可以播放的视频"_s);
}

// False where the disk takes so long that the turn goes to what is known.
QCoro::Task<bool> Playlist::lookThroughFolder()
{
    const QPointer self(this);
    if (_folder.folderVideos().isEmpty() && !_folder.isScanning())
        _folder.rescan();
    const auto known = _folder.folderVideos().size();
    // Looked at again and again: a scan that hangs never says that it has ended.
    for (auto waited = 0ms; self && _folder.isScanning(); waited += glance) {
        if (waited >= FileThreads::usualPatience) {
            wallpaperlog::say(u"playlist: folder still scanning, going on with %1 videos"_s.arg(known));
            co_return false;
        }
        co_await Pause(_clock, glance);
    }
    co_return true;
}

std::optional<QString> Playlist::following(const QString &path)
{
    const QStringList videos = _folder.folderVideos();
    QStringList others = videos;
    others.removeAll(path);
    if (others.isEmpty())
        return std::nullopt;
    if (!_preferences.isPlaylistShuffled())
        return videos[(videos.indexOf(path) + 1) % videos.size()];
    _unplayed.removeIf([&others](const QString &video) { return !others.contains(video); });
    if (_unplayed.isEmpty()) {
        _unplayed = others;
        std::ranges::shuffle(_unplayed, *QRandomGenerator::global());
    }
    return _unplayed.takeLast();
}

void Playlist::wallpaperChanged()
{
    const bool isOther = std::exchange(_playing, _acts.current()) != _playing;
    if (!_acts.isMoving()) {
        _turn.reset();
        ++_asked;
    } else if (isOther || !_turn) {
        startTurn();
    }
}

void Playlist::startTurn()
{
    _turn.reset();
    const std::chrono::minutes length(_preferences.playlistMinutes());
    if (length == 0min)
        return;
    const QDateTime now = _clock.now();
    const QDateTime began = _preferences.turnBegan(_playing);
    if (!began.isValid() || began > now)
        _preferences.setTurnBegan(_playing, now);
    const std::chrono::seconds past(_preferences.turnBegan(_playing).secsTo(now));
    // What has come back is seen for a moment, however long it was away.
    _turn = _clock.after(std::max<std::chrono::seconds>(length - past, 1min), [this] {
        _preferences.setTurnBegan(_playing, _clock.now());
        startTurn(); // should nothing follow
        next();
    });
}

} // namespace velbrix
