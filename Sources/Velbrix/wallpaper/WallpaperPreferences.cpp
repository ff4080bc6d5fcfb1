#include "wallpaper/WallpaperPreferences.h"

#include "foundation/SettingsStore.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// The first six predate the others and must stay readable.
const QString volumeKey = u"VelbClean_WallpaperVolume"_s;
const QString speedKey = u"VelbClean_WallpaperSpeed"_s;
const QString gravityKey = u"VelbClean_WallpaperGravity"_s;
const QString folderKey = u"VelbClean_WallpaperFolder"_s;
const QString autoPlayKey = u"VelbClean_WallpaperAutoPlay"_s;
const QString lastVideoKey = u"VelbClean_LastVideoPath"_s;
const QString hideIconsEnabledKey = u"Velbrix_WallpaperHideDesktopIconsEnabled"_s;
const QString hideIconsActiveKey = u"Velbrix_WallpaperHideDesktopIconsActive"_s;
const QString dockActiveKey = u"Velbrix_WallpaperDockAutoHideActive"_s;
const QString dockOriginalKey = u"Velbrix_WallpaperDockAutoHideOriginal"_s;
const QString pauseOnBatteryKey = u"Velbrix_WallpaperPauseOnBattery"_s;
const QString pauseWhenCoveredKey = u"Velbrix_WallpaperPauseWhenCovered"_s;
const QString mutedKey = u"Velbrix_WallpaperMuted"_s;
const QString videoOrderKey = u"Velbrix_WallpaperFolderOrder"_s;
const QString playlistMinutesKey = u"Velbrix_WallpaperPlaylistMinutes"_s;
const QString playlistTurnKey = u"Velbrix_WallpaperPlaylistTurn"_s; // path and seconds since 1970
const QString playlistShuffledKey = u"Velbrix_WallpaperPlaylistShuffled"_s;
const QString contentModeKey = u"Velbrix_WallpaperContentMode"_s;
const QString returningKey = u"Velbrix_WallpaperIsReturning"_s;
const QString yieldsSoundKey = u"Velbrix_WallpaperYieldsSound"_s;
const QString displayPathsKey = u"Velbrix_PerDisplayVideoPaths"_s;
const QString unusedDisplaysKey = u"Velbrix_WallpaperUnusedDisplays"_s; // decimal, as in the paths

DisplayVideoPaths displayPaths(const QJsonValue &stored)
{
    DisplayVideoPaths paths;
    const QJsonObject object = stored.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        bool isNumber = false;
        const quint32 id = entry.key().toUInt(&isNumber);
        if (isNumber && !entry.value().toString().isEmpty())
            paths.insert(id, entry.value().toString());
    }
    return paths;
}

DisplayIds displayIds(const QJsonValue &stored)
{
    DisplayIds ids;
    for (const QJsonValue &entry : stored.toArray()) {
        bool isNumber = false;
        const quint32 id = entry.toString().toUInt(&isNumber);
        if (isNumber)
            ids.insert(id);
    }
    return ids;
}

} // namespace

WallpaperPreferences::WallpaperPreferences(SettingsStore &settings, QObject *parent)
    : QObject(parent), _settings(settings)
{
}

void WallpaperPreferences::loadSettings()
{
    const auto take = [](const auto &stored, auto &property) {
        if (stored)
            property = *stored;
    };
    if (const auto volume = _settings.real(volumeKey))
        _volume = clampedVolume(*volume);
    if (const auto speed = _settings.real(speedKey))
        _speed = clampedSpeed(*speed);
    _gravity = wallpaperGravityFromRawValue(_settings.string(gravityKey).value_or(QString()));
    _contentMode = wallpaperContentModeFromRawValue(_settings.string(contentModeKey).value_or(QString()));
    if (const auto folder = _settings.string(folderKey); folder && !folder->isEmpty())
        _wallpaperFolder = folder;
    _videoOrder = videoOrderFromRawValue(_settings.string(videoOrderKey).value_or(QString()));
    take(_settings.boolean(mutedKey), _isMuted);
    if (const auto minutes = _settings.integer(playlistMinutesKey))
        _playlistMinutes = clampedTurn(*minutes);
    take(_settings.boolean(playlistShuffledKey), _isPlaylistShuffled);
    take(_settings.boolean(autoPlayKey), _autoPlay);
    take(_settings.boolean(hideIconsEnabledKey), _hideDesktopIconsEnabled);
    take(_settings.boolean(hideIconsActiveKey), _isHidingDesktopIcons);
    take(_settings.boolean(dockActiveKey), _isDockAutoHidden);
    take(_settings.boolean(pauseOnBatteryKey), _pauseOnBattery);
    take(_settings.boolean(pauseWhenCoveredKey), _pauseWhenCovered);
    take(_settings.boolean(yieldsSoundKey), _yieldsSound);
    _unusedDisplays = displayIds(_settings.json(unusedDisplaysKey).value_or(QJsonValue()));
    _perDisplayVideoPaths = displayPaths(_settings.json(displayPathsKey).value_or(QJsonValue()));
}

template <typename Property, typename Value>
void WallpaperPreferences::change(Property &property, const Value &value, const QString &key,
                                  const QJsonValue &stored)
{
    if (property.value() == value)
        return;
    property = value;
    _settings.set(key, stored);
}

void WallpaperPreferences::setVolume(double volume)
{
    change(_volume, clampedVolume(volume), volumeKey, clampedVolume(volume));
}

void WallpaperPreferences::setMuted(bool on)
{
    change(_isMuted, on, mutedKey, on);
}

bool WallpaperPreferences::hasSoundChoice() const
{
    return _settings.real(volumeKey) || _settings.boolean(mutedKey);
}

void WallpaperPreferences::setSpeed(double speed)
{
    change(_speed, clampedSpeed(speed), speedKey, clampedSpeed(speed));
}

void WallpaperPreferences::setGravity(WallpaperGravity gravity)
{
    change(_gravity, gravity, gravityKey, rawValue(gravity));
}

void WallpaperPreferences::setContentMode(WallpaperContentMode mode)
{
    change(_contentMode, mode, contentModeKey, rawValue(mode));
}

void WallpaperPreferences::setWallpaperFolder(const QString &folder)
{
    change(_wallpaperFolder, std::optional(folder), folderKey, folder);
}

void WallpaperPreferences::setVideoOrder(VideoOrder order)
{
    change(_videoOrder, order, videoOrderKey, rawValue(order));
}

void WallpaperPreferences::setPlaylistMinutes(int minutes)
{
    change(_playlistMinutes, clampedTurn(minutes), playlistMinutesKey, clampedTurn(minutes));
}

void WallpaperPreferences::setPlaylistShuffled(bool on)
{
    change(_isPlaylistShuffled, on, playlistShuffledKey, on);
}

QDateTime WallpaperPreferences::turnBegan(const QString &path) const
{
    const QJsonArray turn = _settings.json(playlistTurnKey).value_or(QJsonValue()).toArray();
    return turn.size() == 2 && turn[0].toString() == path ? QDateTime::fromSecsSinceEpoch(turn[1].toInteger())
                                                          : QDateTime();
}

void WallpaperPreferences::setTurnBegan(const QString &path, const QDateTime &at)
{
    _settings.set(playlistTurnKey, QJsonArray{path, at.toSecsSinceEpoch()});
}

void WallpaperPreferences::setAutoPlay(bool on)
{
    change(_autoPlay, on, autoPlayKey, on);
}

void WallpaperPreferences::setHideDesktopIconsEnabled(bool on)
{
    change(_hideDesktopIconsEnabled, on, hideIconsEnabledKey, on);
}

void WallpaperPreferences::setHidingDesktopIcons(bool on)
{
    change(_isHidingDesktopIcons, on, hideIconsActiveKey, on);
}

void WallpaperPreferences::setPauseOnBattery(bool on)
{
    change(_pauseOnBattery, on, pauseOnBatteryKey, on);
}

void WallpaperPreferences::setPauseWhenCovered(bool on)
{
    change(_pauseWhenCovered, on, pauseWhenCoveredKey, on);
}

void WallpaperPreferences::setYieldsSound(bool on)
{
    change(_yieldsSound, on, yieldsSoundKey, on);
}

void WallpaperPreferences::setDisplayUsed(quint32 displayId, bool on)
{
    DisplayIds unused = _unusedDisplays;
    if (on)
        unused.remove(displayId);
    else
        unused.insert(displayId);
    QJsonArray stored;
    for (const quint32 id : std::as_const(unused))
        stored.append(QString::number(id));
    change(_unusedDisplays, unused, unusedDisplaysKey, stored);
}

void WallpaperPreferences::setDisplayVideoPath(quint32 displayId, const std::optional<QString> &path)
{
    DisplayVideoPaths paths = _perDisplayVideoPaths;
    if (path)
        paths.insert(displayId, *path);
    else
        paths.remove(displayId);
    if (paths == _perDisplayVideoPaths.value())
        return;
    _perDisplayVideoPaths = paths;
    QJsonObject stored;
    for (auto entry = paths.cbegin(); entry != paths.cend(); ++entry)
        stored.insert(QString::number(entry.key()), entry.value());
    _settings.set(displayPathsKey, stored);
}

std::optional<QString> WallpaperPreferences::lastVideoPath() const
{
    const auto path = _settings.string(lastVideoKey);
    return path && !path->isEmpty() ? path : std::nullopt;
}

void WallpaperPreferences::setLastVideoPath(const std::optional<QString> &path)
{
    if (!path)
        _settings.remove(lastVideoKey);
    else if (lastVideoPath() != path)
        _settings.set(lastVideoKey, *path);
}

std::optional<bool> WallpaperPreferences::originalSystemDockAutohideState() const
{
    return _settings.boolean(dockOriginalKey);
}

void WallpaperPreferences::setDockState(bool isHidden, std::optional<bool> original)
{
    change(_isDockAutoHidden, isHidden, dockActiveKey, isHidden);
    if (original)
        _settings.set(dockOriginalKey, *original);
    else
        _settings.remove(dockOriginalKey);
    // A failure is told and tried again by the store.
    (void)_settings.flush();
}

bool WallpaperPreferences::isReturning() const
{
    return _settings.boolean(returningKey).value_or(false);
}

void WallpaperPreferences::setReturning(bool on)
{
    if (on)
        _settings.set(returningKey, true);
    else
        _settings.remove(returningKey);
    (void)_settings.flush();
}

} // namespace velbrix
