#include "app/AppServices.h"
#include "app/Banners.h"
#include "app/HostText.h"
#include "app/Tool.h"
#include "app/TrayController.h"
#include "foundation/Awaitables.h"
#include "foundation/Log.h"
#include "platform/Platform.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

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

int percent(double volume)
{
    return qRound(volume * 100);
}

QString soundLine(const WallpaperPreferences &preferences)
{
    const QString volume = u"%1%"_s.arg(percent(preferences.volume()));
    return u"声音："_s + (preferences.isMuted() ? u"静音（音量 %1）"_s.arg(volume) : volume);
}

QString speedLine(const WallpaperPreferences &preferences)
{
    return u"速度：%1×"_s.arg(preferences.speed(), 0, 'f', 2);
}

QString gravityLine(const WallpaperPreferences &preferences)
{
    return u"画面填充："_s + rawValue(preferences.gravity());
}

QString playlistLine(const WallpaperPreferences &preferences)
{
    const int minutes = preferences.playlistMinutes();
    const QString order = preferences.isPlaylistShuffled() ? u"随机顺序"_s : u"按名称"_s;
    return u"轮换："_s + (minutes == 0 ? u"关"_s : u"每 %1 分钟，%2"_s.arg(minutes).arg(order));
}

QString shuffleLine(const WallpaperPreferences &preferences)
{
    return u"随机顺序："_s + (preferences.isPlaylistShuffled() ? u"开"_s : u"关"_s);
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
            {u"speed"_s, preferences.speed()},
            {u"gravity"_s, name(preferences.gravity())},
            {u"playlistMinutes"_s, preferences.playlistMinutes()},
            {u"shuffle"_s, preferences.isPlaylistShuffled()},
            {u"displays"_s, displays},
            {u"iconsCovered"_s, wallpaper.coversDesktopIcons()},
            {u"dockHidden"_s, preferences.isDockAutoHidden()},
            {u"contentMode"_s, name(preferences.contentMode())}};
}

CommandReply status(WallpaperController &wallpaper, HostFamily family)
{
    const QString file = chosenFile(wallpaper);
    const WallpaperPreferences &preferences = wallpaper.preferences();
    QStringList lines = {summary(wallpaper)};
    if (!wallpaper.hint().isEmpty())
        lines << u"提示："_s + wallpaper.hint();
    lines << u"视频："_s + (file.isEmpty() ? u"未选择"_s : file)
          << u"内容："_s + rawValue(preferences.contentMode()) << soundLine(preferences)
          << speedLine(preferences) << gravityLine(preferences) << playlistLine(preferences)
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
    const auto wanted = wantedDisplay(command, wallpaper.displays().connectedDisplays());
    if (!wanted)
        co_return CommandReply::refusal(wanted.error().message);
    const auto &display = *wanted;
    auto playing = display ? actions.playVideoOn(display->id, path) : actions.playVideo(path);
    const auto outcome = co_await playing;
    if (!outcome)
        co_return CommandReply::refusal(outcome.error().message);
    const QString what = display ? u"%1：%2"_s.arg(display->name, path) : path;
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
    const CommandReply reply{exitcode::done, summary(wallpaper), dataOf(wallpaper)};
    co_return reply;
}

QCoro::Task<CommandReply> next(WallpaperController &wallpaper, WallpaperActions &actions)
{
    const auto outcome = co_await actions.playNext();
    if (!outcome)
        co_return CommandReply::refusal(outcome.error().message);
    const QString file = chosenFile(wallpaper);
    CommandReply reply{exitcode::done, u"正在播放："_s + file, dataOf(wallpaper)};
    if (!outcome->isEmpty())
        reply.text = u"已选择：%1\n还没有播放：%2"_s.arg(file, *outcome);
    co_return reply;
}

CommandReply pause(WallpaperController &wallpaper, WallpaperActions &actions)
{
    if (!wallpaper.isShowing())
        return CommandReply::refusal(u"动态壁纸没有在播放"_s);
    if (wallpaper.isPaused())
        return CommandReply::refusal(u"动态壁纸已经暂停"_s);
    actions.pause();
    return {exitcode::done, summary(wallpaper), dataOf(wallpaper)};
}

QCoro::Task<CommandReply> stop(WallpaperController &wallpaper, WallpaperActions &actions)
{
    if (!wallpaper.canStop())
        co_return CommandReply::refusal(u"动态壁纸没有在播放"_s);
    actions.stop();
    // Done when the user's own picture is back.
    while (!wallpaper.isSettled())
        co_await nextSignal(wallpaper, &WallpaperController::isSettledChanged);
    const CommandReply reply{exitcode::done, u"动态壁纸已停止"_s, dataOf(wallpaper)};
    co_return reply;
}

CommandReply mute(WallpaperController &wallpaper, bool on)
{
    wallpaper.preferences().setMuted(on);
    return {exitcode::done, soundLine(wallpaper.preferences()), dataOf(wallpaper)};
}

std::optional<double> number(const QString &text, double least, double most)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber && value >= least && value <= most ? std::optional(value) : std::nullopt;
}

QString gravityNames()
{
    QStringList names;
    for (const WallpaperGravity gravity : allWallpaperGravities)
        names.append(rawValue(gravity));
    return names.join(u'|');
}

// By the name on the page, or by that of --json.
bool setGravity(WallpaperPreferences &preferences, const QString &text)
{
    const auto found = std::ranges::find_if(allWallpaperGravities, [&text](WallpaperGravity gravity) {
        return text == rawValue(gravity) || text == name(gravity);
    });
    if (found != allWallpaperGravities.end())
        preferences.setGravity(*found);
    return found != allWallpaperGravities.end();
}

struct SettingWords {
    QString words;
    QString argument;
    QString help;
};

// A verb that shows what is set, or sets it; `set` tells whether it could.
Command setting(const SettingWords &words, QString (*shown)(const WallpaperPreferences &),
                bool (*set)(WallpaperPreferences &, const QString &))
{
    return {{.words = words.words, .arguments = words.argument, .most = 1, .help = words.help},
            immediate([words, shown, set](AppServices &services, const ParsedCommand &command) {
                WallpaperController &wallpaper = services.wallpaper;
                const QString text = command.arguments.value(0);
                if (!command.arguments.isEmpty() && !set(wallpaper.preferences(), text))
                    return CommandReply::refusal(u"不能用作%1：%2"_s.arg(words.argument, text));
                return CommandReply{exitcode::done, shown(wallpaper.preferences()), dataOf(wallpaper)};
            })};
}

QList<Command> commands()
{
    return {
        {{.words = u"wallpaper set"_s,
          .arguments = u"视频文件"_s,
          .least = 1,
          .most = 1,
          .help = u"选择并播放视频；编号见 wallpaper status，1 是主显示器"_s,
          .takesPath = true,
          .options = {{displayOption, u"编号"_s}}},
         [](AppServices &services, ParsedCommand command) {
             return set(services.wallpaper, services.wallpaperActions, std::move(command));
         }},
        {{.words = u"wallpaper play"_s, .help = u"播放或继续播放动态壁纸"_s},
         [](AppServices &services, const ParsedCommand &) {
             return play(services.wallpaper, services.wallpaperActions);
         }},
        {{.words = u"wallpaper pause"_s, .help = u"暂停动态壁纸"_s},
         immediate([](AppServices &services, const ParsedCommand &) {
             return pause(services.wallpaper, services.wallpaperActions);
         })},
        {{.words = u"wallpaper stop"_s, .help = u"停止动态壁纸并恢复原来的桌面图片"_s},
         [](AppServices &services, const ParsedCommand &) {
             return stop(services.wallpaper, services.wallpaperActions);
         }},
        {{.words = u"wallpaper status"_s, .help = u"动态壁纸与各显示器的当前状态"_s},
         immediate([](AppServices &services, const ParsedCommand &) {
             return status(services.wallpaper, services.platform.family);
         })},
        setting({u"wallpaper volume"_s, u"音量（0–100）"_s, u"查看或设置音量"_s}, soundLine,
                [](WallpaperPreferences &preferences, const QString &text) {
                    const auto volume = number(text, 0, 100);
                    if (volume) {
                        preferences.setVolume(*volume / 100);
                        preferences.setMuted(false);
                    }
                    return volume.has_value();
                }),
        setting({u"wallpaper speed"_s, u"倍数（0.25–2）"_s, u"查看或设置播放速度"_s}, speedLine,
                [](WallpaperPreferences &preferences, const QString &text) {
                    const auto speed = number(text, 0.25, 2);
                    if (speed)
                        preferences.setSpeed(*speed);
                    return speed.has_value();
                }),
        setting({u"wallpaper gravity"_s, gravityNames(), u"查看或设置画面填充方式"_s}, gravityLine,
                setGravity),
        {{.words = u"wallpaper next"_s, .help = u"换成壁纸文件夹里的下一个视频"_s},
         [](AppServices &services, const ParsedCommand &) {
             return next(services.wallpaper, services.wallpaperActions);
         }},
        setting({u"wallpaper playlist"_s, u"分钟（1–1440）|off"_s, u"查看或设置多久换一个视频"_s},
                playlistLine,
                [](WallpaperPreferences &preferences, const QString &text) {
                    const auto minutes = text == u"off" ? std::optional(0.0) : number(text, 1, 1440);
                    if (minutes)
                        preferences.setPlaylistMinutes(static_cast<int>(*minutes));
                    return minutes.has_value();
                }),
        setting({u"wallpaper shuffle"_s, u"on|off"_s, u"查看或设置是否随机轮换"_s}, shuffleLine,
                [](WallpaperPreferences &preferences, const QString &text) {
                    const bool isOn = text == u"on";
                    if (isOn || text == u"off")
                        preferences.setPlaylistShuffled(isOn);
                    return isOn || text == u"off";
                }),
        {{.words = u"wallpaper mute"_s, .help = u"让动态壁纸静音"_s},
         immediate(
             [](AppServices &services, const ParsedCommand &) { return mute(services.wallpaper, true); })},
        {{.words = u"wallpaper unmute"_s, .help = u"打开动态壁纸的声音"_s},
         immediate(
             [](AppServices &services, const ParsedCommand &) { return mute(services.wallpaper, false); })},
    };
}

FeaturePrivacyNotice consent()
{
    return privacyNotice(PrivacyConsentKind::videoWallpaper, u"video.badge.waveform.fill"_s,
                         NoticeTint::violet, u"视频壁纸隐私确认"_s,
                         u"播放动态壁纸会读取你选择的本地视频，并在桌面层持续渲染。"_s,
                         {u"仅使用你选择的本地视频文件"_s, u"不会上传视频内容"_s, u"可随时暂停或停止"_s});
}

// While nothing covers the icons and nothing may, the key says why.
void toggleHideDesktopIcons(AppServices &services)
{
    if (services.wallpaper.preferences().hideDesktopIconsEnabled())
        services.wallpaper.toggleHideDesktopIcons();
    else
        postBanner(services.notifications, u"桌面图标没有被盖住"_s,
                   u"请先在“动态壁纸”里打开“隐藏桌面文件”。"_s, u"info.circle"_s);
}

TraySection traySection(AppServices &services)
{
    const WallpaperController &wallpaper = services.wallpaper;
    QList<TrayMenuItem> items = {{.id = u"wallpaperPlay"_s,
                                  .title = wallpaper.trayTitle(),
                                  .keyEquivalent = u"⌘⇧P"_s,
                                  .isEnabled = wallpaper.canToggle(),
                                  .act = [&services] { services.wallpaperActions.togglePlayPause(); }},
                                 {.id = u"wallpaperStop"_s,
                                  .title = u"停止壁纸"_s,
                                  .isEnabled = wallpaper.canStop(),
                                  .act = [&services] { services.wallpaperActions.stop(); }}};
    if (wallpaper.isShowing() && wallpaper.preferences().wallpaperFolder()) {
        items.append({.id = u"wallpaperNext"_s, .title = u"下一个壁纸"_s, .act = [&services] {
                          services.wallpaperActions.playNext();
                      }});
    }
    if (wallpaper.isShowing()) {
        const bool isMuted = wallpaper.preferences().isMuted();
        items.append({.id = u"wallpaperMute"_s,
                      .title = isMuted ? u"打开壁纸声音"_s : u"壁纸静音"_s,
                      .act = [&services, isMuted] { services.wallpaper.preferences().setMuted(!isMuted); }});
    }
    return {u"视频壁纸"_s,
            items,
            {wallpaper.trayTitle(), log::text(wallpaper.canToggle()), log::text(wallpaper.canStop())}};
}

void followTray(AppServices &services, TrayController &tray)
{
    const auto refreshAfter = [&tray](const auto &sender, auto signal) {
        QObject::connect(&sender, signal, &tray, [&tray] { tray.refresh(false); });
    };
    WallpaperController &wallpaper = services.wallpaper;
    refreshAfter(wallpaper, &WallpaperController::stateChanged);
    refreshAfter(wallpaper, &WallpaperController::isPausedChanged);
    refreshAfter(wallpaper, &WallpaperController::isApplyingChanged);
    refreshAfter(wallpaper.displays(), &ConnectedDisplays::connectedDisplaysChanged);
    refreshAfter(wallpaper, &WallpaperController::contentChanged);
    refreshAfter(wallpaper.power(), &PowerPolicy::isOnBatteryPowerChanged);
    refreshAfter(wallpaper.preferences(), &WallpaperPreferences::pauseOnBatteryChanged);
    const auto rewrite = [&tray] { tray.refresh(true); };
    QObject::connect(&services.wallpaperActions, &WallpaperActions::restored, &tray, rewrite);
    QObject::connect(&wallpaper.preferences(), &WallpaperPreferences::isMutedChanged, &tray, rewrite);
    QObject::connect(&wallpaper.preferences(), &WallpaperPreferences::wallpaperFolderChanged, &tray, rewrite);
}

void tellNews(AppServices &services, Banners &banners)
{
    const QString dockTitle = hostText(u"隐藏 Dock"_s, services.platform.family);
    WallpaperController &wallpaper = services.wallpaper;
    QObject::connect(&wallpaper, &WallpaperController::stateChanged, &banners, [&banners, &wallpaper] {
        const WallpaperState state = wallpaper.state();
        if (state.kind == WallpaperState::Kind::failed)
            banners.warnBehindWindow(u"动态壁纸"_s, state.message);
    });
    QObject::connect(&wallpaper, &WallpaperController::hintChanged, &banners,
                     [&banners, &wallpaper] { banners.warnBehindWindow(u"动态壁纸"_s, wallpaper.hint()); });
    DockHiding &dock = wallpaper.dock();
    QObject::connect(&dock, &DockHiding::problemChanged, &banners,
                     [&banners, &dock, dockTitle] { banners.warnBehindWindow(dockTitle, dock.problem()); });
}

} // namespace

Tool wallpaperTool()
{
    return {
        .identifier = u"wallpaper"_s,
        .title = u"动态壁纸"_s,
        .symbol = u"photo.on.rectangle"_s,
        .group = u"桌面"_s,
        .commands = commands(),
        .notices = {consent()},
        .hotkeys = {{HotkeyAction::hideDesktopIcons, toggleHideDesktopIcons},
                    {HotkeyAction::hideDock,
                     [](AppServices &services) { services.wallpaper.dock().toggleDockAutoHide(); }}},
        .job = [](AppServices &services) { return &services.wallpaper.job(); },
        .tray = traySection,
        .followTray = followTray,
        .status =
            [](AppServices &services) {
                return ToolStatus{summary(services.wallpaper),
                                  {{u"wallpaper"_s, dataOf(services.wallpaper)}}};
            },
        .news = tellNews,
        .launch =
            [](AppServices &services) {
                services.wallpaper.recoverAfterCrash();
                services.wallpaperActions.scheduleRestore();
            },
        .shutDown = [](AppServices &services) { services.wallpaperActions.shutDown(); },
    };
}

} // namespace velbrix
