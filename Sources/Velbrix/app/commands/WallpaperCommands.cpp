#include "app/commands/WallpaperCommands.h"

#include "app/AppServices.h"
#include "app/WallpaperActions.h"
#include "foundation/Awaitables.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString displayOption = u"--display"_s;

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

QString chosenFile(WallpaperController &wallpaper)
{
    const auto chosen = wallpaper.video().videoURL();
    return (chosen ? chosen : wallpaper.preferences().lastVideoPath()).value_or(QString());
}

QJsonObject toJson(const WallpaperDisplayInfo &display, int number)
{
    return {{u"number"_s, number},
            {u"id"_s, static_cast<qint64>(display.id)},
            {u"name"_s, display.name},
            {u"main"_s, display.isMain},
            {u"file"_s, display.videoPath ? QJsonValue(*display.videoPath) : QJsonValue()},
            {u"playing"_s, display.isPlaying}};
}

QString line(const WallpaperDisplayInfo &display, int number, bool isPaused)
{
    const QString shown = isPaused ? u"已暂停"_s : u"播放中"_s;
    const QString otherwise = display.isMain ? u"未选择视频"_s : u"跟随主显示器"_s;
    return u"  %1  %2%3  %4  %5"_s.arg(
        QString::number(number), display.name, display.isMain ? u"（主）"_s : QString(),
        display.isPlaying ? shown : u"未播放"_s, display.videoPath.value_or(otherwise));
}

CommandReply status(WallpaperController &wallpaper)
{
    const QString file = chosenFile(wallpaper);
    const WallpaperPreferences &preferences = wallpaper.preferences();
    QStringList lines = {wallpaperSummary(wallpaper)};
    if (!wallpaper.notice().isEmpty())
        lines << u"提示："_s + wallpaper.notice();
    lines << u"视频："_s + (file.isEmpty() ? u"未选择"_s : file)
          << u"内容："_s + rawValue(preferences.contentMode())
          << u"供电："_s + (wallpaper.power().isOnBatteryPower() ? u"电池"_s : u"电源"_s)
          << u"桌面图标："_s + (preferences.coversDesktopIcons() ? u"已盖住"_s : u"未盖住"_s)
          << u"Dock："_s + (preferences.isDockAutoHidden() ? u"已隐藏"_s : u"未隐藏"_s) << u"显示器："_s;
    int number = 0;
    for (const WallpaperDisplayInfo &display : wallpaper.displays().connectedDisplays())
        lines << line(display, ++number, wallpaper.isPaused());
    if (number == 0)
        lines << u"  没有检测到显示器"_s;
    return {exitcode::done, lines.join(u'\n'), wallpaperData(wallpaper)};
}

// Without the option the main display.
Result<std::optional<WallpaperDisplayInfo>> wantedDisplay(const ParsedCommand &command,
                                                          const QList<WallpaperDisplayInfo> &displays)
{
    if (!command.options.contains(displayOption))
        return std::nullopt;
    const QString text = command.options.value(displayOption);
    bool isNumber = false;
    const qsizetype number = text.toInt(&isNumber);
    if (!isNumber || number < 1 || number > displays.size())
        return failure(u"没有编号为 %1 的显示器（共 %2 块）"_s.arg(text, QString::number(displays.size())));
    return displays[number - 1];
}

QCoro::Task<CommandReply> set(WallpaperController &wallpaper, WallpaperActions &actions,
                              ParsedCommand command)
{
    const QString path = command.arguments.first();
    const auto display = wantedDisplay(command, wallpaper.displays().connectedDisplays());
    if (!display)
        co_return CommandReply::refusal(display.error().message);
    auto playing = *display ? actions.playVideoOn((*display)->id, path) : actions.playVideo(path);
    const auto outcome = co_await playing;
    if (!outcome)
        co_return CommandReply::refusal(outcome.error().message);
    const QString what = *display ? u"%1：%2"_s.arg((*display)->name, path) : path;
    CommandReply reply;
    reply.text =
        outcome->isEmpty() ? u"正在播放："_s + what : u"已选择：%1\n还没有播放：%2"_s.arg(what, *outcome);
    reply.data = {{u"file"_s, path}, {u"playing"_s, outcome->isEmpty()}, {u"notice"_s, *outcome}};
    co_return reply;
}

QCoro::Task<CommandReply> play(WallpaperController &wallpaper, WallpaperActions &actions)
{
    if (wallpaper.isShowing() && !wallpaper.isPaused())
        co_return CommandReply::refusal(u"动态壁纸已在播放"_s);
    const auto outcome = co_await actions.play();
    if (!outcome)
        co_return CommandReply::refusal(outcome.error().message);
    const CommandReply reply{exitcode::done, wallpaperSummary(wallpaper), wallpaperData(wallpaper)};
    co_return reply;
}

CommandReply pause(WallpaperController &wallpaper, WallpaperActions &actions)
{
    if (!wallpaper.isShowing())
        return CommandReply::refusal(u"动态壁纸没有在播放"_s);
    if (wallpaper.isPaused())
        return CommandReply::refusal(u"动态壁纸已经暂停"_s);
    actions.pause();
    return {exitcode::done, wallpaperSummary(wallpaper), wallpaperData(wallpaper)};
}

QCoro::Task<CommandReply> stop(WallpaperController &wallpaper, WallpaperActions &actions)
{
    if (!wallpaper.canStop())
        co_return CommandReply::refusal(u"动态壁纸没有在播放"_s);
    actions.stop();
    // Done when the user's own picture is back.
    while (!wallpaper.isSettled())
        co_await nextSignal(wallpaper, &WallpaperController::isSettledChanged);
    const CommandReply reply{exitcode::done, u"动态壁纸已停止"_s, wallpaperData(wallpaper)};
    co_return reply;
}

QCoro::Task<CommandReply> answered(CommandReply reply)
{
    co_return reply;
}

} // namespace

QHash<QString, CommandHandler> wallpaperCommands(AppServices &services, WallpaperActions &actions)
{
    WallpaperController &wallpaper = services.wallpaper;
    return {
        {u"wallpaper set"_s, [&](const ParsedCommand &command) { return set(wallpaper, actions, command); }},
        {u"wallpaper play"_s, [&](const ParsedCommand &) { return play(wallpaper, actions); }},
        {u"wallpaper pause"_s, [&](const ParsedCommand &) { return answered(pause(wallpaper, actions)); }},
        {u"wallpaper stop"_s, [&](const ParsedCommand &) { return stop(wallpaper, actions); }},
        {u"wallpaper status"_s, [&](const ParsedCommand &) { return answered(status(wallpaper)); }},
    };
}

QString wallpaperSummary(const WallpaperController &wallpaper)
{
    if (wallpaper.isShowing())
        return wallpaper.isPaused() ? u"动态壁纸：已暂停"_s : u"动态壁纸：播放中"_s;
    if (wallpaper.state().kind == WallpaperState::Kind::failed)
        return u"动态壁纸：失败，"_s + wallpaper.state().message;
    return u"动态壁纸：未播放"_s;
}

QJsonObject wallpaperData(WallpaperController &wallpaper)
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
            {u"notice"_s, wallpaper.notice()},
            {u"onBattery"_s, wallpaper.power().isOnBatteryPower()},
            {u"displays"_s, displays},
            {u"iconsCovered"_s, preferences.coversDesktopIcons()},
            {u"dockHidden"_s, preferences.isDockAutoHidden()},
            {u"contentMode"_s, name(preferences.contentMode())}};
}

} // namespace velbrix
