#include "app/commands/ShellCommands.h"

#include "app/AppDelegate.h"
#include "app/AppServices.h"
#include "app/commands/WallpaperCommands.h"

#include <QCoreApplication>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

CommandReply status(AppServices &services)
{
    const ScreenRecorderController &recorder = services.recorder;
    RecordingSession &session = services.recorder.session();
    RecordLiveUI &live = services.recorder.log().live();
    CommandReply reply;
    reply.data = {{u"version"_s, QCoreApplication::applicationVersion()},
                  {u"pid"_s, QCoreApplication::applicationPid()},
                  {u"windowVisible"_s, !services.isInBackground()},
                  {u"firstLaunchAccepted"_s, services.privacy.hasAcceptedFirstLaunchNotice()},
                  {u"recording"_s, recorder.isRecording()},
                  {u"frames"_s, live.frameCountUI()},
                  {u"elapsedSeconds"_s, live.elapsedSeconds()},
                  {u"wallpaper"_s, wallpaperData(services.wallpaper)}};
    if (const auto path = session.outputURL())
        reply.data[u"file"_s] = *path;
    if (const auto path = session.finishedMovie())
        reply.data[u"lastMovie"_s] = *path;
    if (!session.lastFailure().isEmpty())
        reply.data[u"lastFailure"_s] = session.lastFailure();

    QStringList lines = {u"Velbrix %1 正在运行"_s.arg(QCoreApplication::applicationVersion())};
    lines << (services.isInBackground() ? u"窗口：已隐藏"_s : u"窗口：显示中"_s);
    lines << (recorder.isRecording()
                  ? u"录制：进行中，%1 秒，%2 帧"_s.arg(live.elapsedSeconds()).arg(live.frameCountUI())
                  : u"录制：未开始"_s);
    lines << wallpaperSummary(services.wallpaper);
    if (!services.privacy.hasAcceptedFirstLaunchNotice())
        lines << u"尚未完成首启声明确认。"_s;
    reply.text = lines.join(u'\n');
    return reply;
}

CommandReply hotkeys(HotkeyManager &manager)
{
    QStringList lines;
    QJsonArray list;
    for (const HotkeyActionInfo &info : hotkeyActions()) {
        const HotkeyChord chord = manager.chord(info.action);
        const QString problem =
            manager.isAvailable(info.action) ? manager.problem(info.action) : u"此版本没有该功能"_s;
        lines << u"%1  %2  %3"_s.arg(info.label, chord.displayText(),
                                     problem.isEmpty() ? u"有效"_s : u"未生效：%1"_s.arg(problem));
        list.append(QJsonObject{{u"action"_s, info.name},
                                {u"keyCode"_s, static_cast<qint64>(chord.keyCode)},
                                {u"modifiers"_s, static_cast<qint64>(chord.modifiers)},
                                {u"display"_s, chord.displayText()},
                                {u"active"_s, problem.isEmpty()},
                                {u"problem"_s, problem}});
    }
    return {exitcode::done, lines.join(u'\n'), {{u"hotkeys"_s, list}}};
}

CommandReply show(AppServices &services, AppDelegate &delegate, const QString &identifier)
{
    const auto tab = appTabFromIdentifier(identifier);
    if (!tab)
        return CommandReply::refusal(u"没有这个标签页：%1"_s.arg(identifier));
    services.router.show(*tab);
    delegate.showWindow();
    return {exitcode::done, u"已打开：%1"_s.arg(appTabInfo(*tab).title), {{u"tab"_s, identifier}}};
}

CommandReply quit(AppDelegate &delegate)
{
    // The answer leaves first.
    QMetaObject::invokeMethod(&delegate, &AppDelegate::quitApp, Qt::QueuedConnection);
    return {exitcode::done, u"正在退出"_s, {}};
}

QCoro::Task<CommandReply> answered(CommandReply reply)
{
    co_return reply;
}

CommandHandler immediate(std::function<CommandReply(const QStringList &)> act)
{
    return [act = std::move(act)](const ParsedCommand &command) { return answered(act(command.arguments)); };
}

} // namespace

QHash<QString, CommandHandler> shellCommands(AppServices &services, AppDelegate &delegate)
{
    return {
        {u"status"_s, immediate([&services](const QStringList &) { return status(services); })},
        {u"hotkeys"_s, immediate([&services](const QStringList &) { return hotkeys(services.hotkeys); })},
        {u"show"_s, immediate([&services, &delegate](const QStringList &arguments) {
             return show(services, delegate, arguments.first());
         })},
        {u"quit"_s, immediate([&delegate](const QStringList &) { return quit(delegate); })},
    };
}

} // namespace velbrix
