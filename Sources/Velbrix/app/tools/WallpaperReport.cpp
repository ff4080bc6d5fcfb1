#include "app/tools/WallpaperReport.h"

#include "app/HostText.h"
#include "wallpaper/WallpaperController.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace velbrix::wallpaperreport {
namespace {

QString name(WallpaperState::Kind kind)
{
    switch (kind) {
    case WallpaperState::Kind::idle:
        return u"idle"_s;
    case WallpaperState::Kind::selecting:
        return u"selecting"_s;
    case WallpaperState::Kind::ready:
        return u"ready"_s;
    case WallpaperState::Kind::playing:
        return u"playing"_s;
    case WallpaperState::Kind::failed:
        return u"failed"_s;
    }
    return {};
}

QString name(WallpaperContentMode mode)
{
    switch (mode) {
    case WallpaperContentMode::video:
        return u"video"_s;
    case WallpaperContentMode::html:
        return u"html"_s;
    case WallpaperContentMode::music:
        return u"music"_s;
    }
    return {};
}

int percent(double volume)
{
    return qRound(volume * 100);
}

QJsonObject toJson(const WallpaperDisplayInfo &display, int number)
{
    return {{u"number"_s, number},
            {u"id"_s, static_cast<qint64>(display.id)},
            {u"name"_s, display.name},
            {u"main"_s, display.isMain},
            {u"file"_s, display.videoPath ? QJsonValue(*display.videoPath) : QJsonValue()},
            {u"used"_s, display.isUsed},
            {u"playing"_s, display.isPlaying}};
}

QString line(const WallpaperDisplayInfo &display, int number, bool isPaused)
{
    const QString shown = isPaused ? u"已暂停"_s : u"播放中"_s;
    const QString otherwise = display.isMain ? u"未选择视频"_s : u"跟随主显示器"_s;
    const QString video = display.isUsed ? display.videoPath.value_or(otherwise) : u"不放壁纸"_s;
    return u"  %1  %2%3  %4  %5"_s.arg(QString::number(number), display.name,
                                       display.isMain ? u"（主）"_s : QString(),
                                       display.isPlaying ? shown : u"未播放"_s, video);
}

} // namespace

QString name(WallpaperGravity gravity)
{
    switch (gravity) {
    case WallpaperGravity::fill:
        return u"fill"_s;
    case WallpaperGravity::aspectFill:
        return u"aspectFill"_s;
    case WallpaperGravity::aspectFit:
        return u"aspectFit"_s;
    case WallpaperGravity::resize:
        return u"resize"_s;
    case WallpaperGravity::none:
        return u"none"_s;
    }
    return {};
}

QString soundLine(const WallpaperController &wallpaper)
{
    const WallpaperPreferences &preferences = wallpaper.preferences();
    const QString volume = u"%1%"_s.arg(percent(preferences.volume()));
    if (preferences.isMuted())
        return u"声音：静音（音量 %1）"_s.arg(volume);
    const QString reason = wallpaper.sound().silenceReason();
    return u"声音："_s + volume + (reason.isEmpty() ? QString() : u"（%1，暂时静音）"_s.arg(reason));
}

QString yieldLine(const WallpaperController &wallpaper)
{
    return u"其他程序发声时静音："_s + (wallpaper.preferences().yieldsSound() ? u"开"_s : u"关"_s);
}

QString speedLine(const WallpaperController &wallpaper)
{
    return u"速度：%1×"_s.arg(wallpaper.preferences().speed(), 0, 'f', 2);
}

QString gravityLine(const WallpaperController &wallpaper)
{
    return u"画面填充："_s + rawValue(wallpaper.preferences().gravity());
}

QString playlistLine(const WallpaperController &wallpaper)
{
    const WallpaperPreferences &preferences = wallpaper.preferences();
    const int minutes = preferences.playlistMinutes();
    const QString order = preferences.isPlaylistShuffled() ? u"随机顺序"_s : u"按文件夹的顺序"_s;
    return u"轮换："_s + (minutes == 0 ? u"关"_s : u"每 %1 分钟，%2"_s.arg(minutes).arg(order));
}

QString shuffleLine(const WallpaperController &wallpaper)
{
    return u"随机顺序："_s + (wallpaper.preferences().isPlaylistShuffled() ? u"开"_s : u"关"_s);
}

QString chosenFile(WallpaperController &wallpaper)
{
    const auto chosen = wallpaper.video().videoURL();
    return (chosen ? chosen : wallpaper.preferences().lastVideoPath()).value_or(QString());
}

QString summary(const WallpaperController &wallpaper)
{
    if (wallpaper.isShowing())
        return wallpaper.isPaused() ? u"动态壁纸：已暂停"_s : u"动态壁纸：播放中"_s;
    if (wallpaper.state().kind == WallpaperState::Kind::failed)
        return u"动态壁纸：失败，"_s + wallpaper.state().message;
    return u"动态壁纸：未播放"_s;
}

QJsonObject dataOf(WallpaperController &wallpaper)
{
    const WallpaperPreferences &preferences = wallpaper.preferences();
    QJsonArray displays;
    for (const WallpaperDisplayInfo &display : wallpaper.displays().connectedDisplays())
        displays.append(toJson(display, static_cast<int>(displays.size()) + 1));
    const QString file = chosenFile(wallpaper);
    return {{u"state"_s, name(wallpaper.state().kind)},
            {u"paused"_s, wallpaper.isPaused()},
            {u"file"_s, file.isEmpty() ? QJsonValue() : QJsonValue(file)},
            {u"failure"_s, wallpaper.state().message},
            {u"notice"_s, wallpaper.hint()},
            {u"onBattery"_s, wallpaper.power().isOnBatteryPower()},
            {u"volume"_s, percent(preferences.volume())},
            {u"muted"_s, preferences.isMuted()},
            {u"yieldsSound"_s, preferences.yieldsSound()},
            {u"speed"_s, preferences.speed()},
            {u"gravity"_s, name(preferences.gravity())},
            {u"playlistMinutes"_s, preferences.playlistMinutes()},
            {u"shuffle"_s, preferences.isPlaylistShuffled()},
            {u"displays"_s, displays},
            {u"iconsCovered"_s, wallpaper.coversDesktopIcons()},
            {u"dockHidden"_s, preferences.isDockAutoHidden()},
            {u"contentMode"_s, name(preferences.contentMode())}};
}

CommandReply statusOf(WallpaperController &wallpaper, HostFamily family)
{
    const QString file = chosenFile(wallpaper);
    const WallpaperPreferences &preferences = wallpaper.preferences();
    QStringList lines = {summary(wallpaper)};
    if (!wallpaper.hint().isEmpty())
        lines << u"提示："_s + wallpaper.hint();
    lines << u"视频："_s + (file.isEmpty() ? u"未选择"_s : file)
          << u"内容："_s + rawValue(preferences.contentMode()) << soundLine(wallpaper) << speedLine(wallpaper)
          << gravityLine(wallpaper) << playlistLine(wallpaper)
          << u"供电："_s + (wallpaper.power().isOnBatteryPower() ? u"电池"_s : u"电源"_s)
          << u"桌面图标："_s + (wallpaper.coversDesktopIcons() ? u"已盖住"_s : u"未盖住"_s)
          << hostText(u"Dock："_s, family) + (preferences.isDockAutoHidden() ? u"已隐藏"_s : u"未隐藏"_s)
          << u"显示器："_s;
    int number = 0;
    for (const WallpaperDisplayInfo &display : wallpaper.displays().connectedDisplays())
        lines << line(display, ++number, wallpaper.isPaused());
    if (number == 0)
        lines << u"  没有检测到显示器"_s;
    return {exitcode::done, lines.join(u'\n'), dataOf(wallpaper)};
}

} // namespace velbrix::wallpaperreport
