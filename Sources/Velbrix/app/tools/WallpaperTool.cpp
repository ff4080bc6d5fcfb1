#include "app/AppServices.h"
#include "app/Banners.h"
#include "app/HostText.h"
#include "app/Tool.h"
#include "app/TrayController.h"
#include "app/tools/WallpaperReport.h"
#include "foundation/Awaitables.h"
#include "foundation/Log.h"
#include "platform/Platform.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

using namespace wallpaperreport;

namespace {

const QString displayOption = u"--display"_s;

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

CommandReply unfit(const QString &text, const QString &wanted)
{
    return CommandReply::refusal(u"“%1”不可用，请用：%2"_s.arg(text, wanted));
}

std::optional<bool> onOrOff(const QString &text)
{
    if (text != u"on" && text != u"off")
        return std::nullopt;
    return text == u"on";
}

CommandReply clear(WallpaperController &wallpaper, const ParsedCommand &command)
{
    const auto displays = wallpaper.displays().connectedDisplays();
    const auto wanted = wantedDisplay(command, displays);
    if (!wanted)
        return CommandReply::refusal(wanted.error().message);
    if (displays.isEmpty())
        return CommandReply::refusal(u"没有检测到显示器"_s);
    const WallpaperDisplayInfo display = wanted->value_or(displays.first());
    if (!display.videoPath && display.isUsed)
        return CommandReply::refusal(display.isMain ? u"主显示器没有选择视频"_s
                                                    : u"%1 本来就跟随主显示器"_s.arg(display.name));
    wallpaper.clearDisplayVideo(display.id);
    const QString now = display.isMain ? u"不再使用视频"_s : u"跟随主显示器"_s;
    return {exitcode::done, u"%1：%2"_s.arg(display.name, now), dataOf(wallpaper)};
}

CommandReply use(WallpaperController &wallpaper, const ParsedCommand &command)
{
    const auto wanted = wantedDisplay(command, wallpaper.displays().connectedDisplays());
    if (!wanted)
        return CommandReply::refusal(wanted.error().message);
    if (!*wanted || (*wanted)->isMain)
        return CommandReply::refusal(u"请用 --display 指定一块副显示器；主显示器用 wallpaper clear"_s);
    const QString text = command.arguments.first();
    const auto on = onOrOff(text);
    if (!on)
        return unfit(text, u"on|off"_s);
    const WallpaperDisplayInfo &display = **wanted;
    wallpaper.preferences().setDisplayUsed(display.id, *on);
    return {exitcode::done, u"%1：%2"_s.arg(display.name, *on ? u"放壁纸"_s : u"不放壁纸"_s),
            dataOf(wallpaper)};
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
    return {exitcode::done, soundLine(wallpaper), dataOf(wallpaper)};
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
Command setting(const SettingWords &words, QString (*shown)(const WallpaperController &),
                bool (*set)(WallpaperPreferences &, const QString &))
{
    return {{.words = words.words, .arguments = words.argument, .most = 1, .help = words.help},
            immediate([words, shown, set](AppServices &services, const ParsedCommand &command) {
                WallpaperController &wallpaper = services.wallpaper;
                const QString text = command.arguments.value(0);
                if (!command.arguments.isEmpty() && !set(wallpaper.preferences(), text))
                    return unfit(text, words.argument);
                return CommandReply{exitcode::done, shown(wallpaper), dataOf(wallpaper)};
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
        {{.words = u"wallpaper clear"_s,
          .help = u"忘记主显示器的视频；别的显示器改为跟随主显示器"_s,
          .options = {{displayOption, u"编号"_s}}},
         immediate([](AppServices &services, const ParsedCommand &command) {
             return clear(services.wallpaper, command);
         })},
        {{.words = u"wallpaper use"_s,
          .arguments = u"on|off"_s,
          .least = 1,
          .most = 1,
          .help = u"副显示器放不放壁纸；不放时显示原来的桌面图片"_s,
          .options = {{displayOption, u"编号"_s}}},
         immediate([](AppServices &services, const ParsedCommand &command) {
             return use(services.wallpaper, command);
         })},
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
             return statusOf(services.wallpaper, services.platform.family);
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
                    const auto on = onOrOff(text);
                    if (on)
                        preferences.setPlaylistShuffled(*on);
                    return on.has_value();
                }),
        {{.words = u"wallpaper mute"_s, .help = u"让动态壁纸静音"_s},
         immediate(
             [](AppServices &services, const ParsedCommand &) { return mute(services.wallpaper, true); })},
        {{.words = u"wallpaper unmute"_s, .help = u"打开动态壁纸的声音"_s},
         immediate(
             [](AppServices &services, const ParsedCommand &) { return mute(services.wallpaper, false); })},
        setting({u"wallpaper yield"_s, u"on|off"_s, u"查看或设置其他程序发声时是否静音"_s}, yieldLine,
                [](WallpaperPreferences &preferences, const QString &text) {
                    const auto on = onOrOff(text);
                    if (on)
                        preferences.setYieldsSound(*on);
                    return on.has_value();
                }),
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
