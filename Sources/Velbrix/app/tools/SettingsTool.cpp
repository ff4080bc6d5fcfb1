#include "app/AppServices.h"
#include "app/Tools.h"
#include "foundation/Job.h"

#include <QCoreApplication>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString lineOf(const Tool &tool, const Job::State &state)
{
    const QString line = u"%1：%2"_s.arg(tool.title, state.what);
    return state.progress < 0 ? line : line + u"，%1%"_s.arg(qRound(state.progress * 100));
}

QJsonObject toJson(const Tool &tool, const Job::State &state)
{
    QJsonObject json = {{u"tool"_s, tool.identifier}, {u"what"_s, state.what}};
    if (state.progress >= 0)
        json[u"progress"_s] = state.progress;
    return json;
}

CommandReply status(AppServices &services)
{
    const bool isAccepted = services.privacy.hasAcceptedFirstLaunchNotice();
    CommandReply reply;
    reply.data = {{u"version"_s, QCoreApplication::applicationVersion()},
                  {u"pid"_s, QCoreApplication::applicationPid()},
                  {u"windowVisible"_s, !services.isInBackground()},
                  {u"firstLaunchAccepted"_s, isAccepted}};
    QStringList lines = {u"Velbrix %1 正在运行"_s.arg(QCoreApplication::applicationVersion()),
                         services.isInBackground() ? u"窗口：已隐藏"_s : u"窗口：显示中"_s};
    QJsonArray jobs;
    for (const Tool &tool : tools()) {
        if (tool.status) {
            const ToolStatus part = tool.status(services);
            lines << part.line;
            for (auto entry = part.data.begin(); entry != part.data.end(); ++entry)
                reply.data[entry.key()] = entry.value();
        }
        const Job *const job = jobOf(tool, services);
        const Job::State state = job ? job->state() : Job::State();
        if (state.what.isEmpty())
            continue;
        jobs.append(toJson(tool, state));
        if (!tool.status)
            lines << lineOf(tool, state);
    }
    reply.data[u"jobs"_s] = jobs;
    if (!isAccepted)
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
        const QString text = manager.chordText(info.action);
        const QString problem =
            manager.isAvailable(info.action) ? manager.problem(info.action) : u"此版本没有该功能"_s;
        lines << u"%1  %2  %3"_s.arg(manager.label(info.action), text,
                                     problem.isEmpty() ? u"有效"_s : u"未生效：%1"_s.arg(problem));
        list.append(QJsonObject{{u"action"_s, info.name},
                                {u"keyCode"_s, static_cast<qint64>(chord.keyCode)},
                                {u"modifiers"_s, static_cast<qint64>(chord.modifiers)},
                                {u"display"_s, text},
                                {u"active"_s, problem.isEmpty()},
                                {u"problem"_s, problem}});
    }
    return {exitcode::done, lines.join(u'\n'), {{u"hotkeys"_s, list}}};
}

CommandReply show(AppServices &services, const QString &identifier)
{
    const Tool *tool = toolCalled(identifier);
    if (!tool)
        return CommandReply::refusal(u"没有这个标签页：%1"_s.arg(identifier));
    services.router.open(identifier);
    return {exitcode::done, u"已打开：%1"_s.arg(tool->title), {{u"tab"_s, identifier}}};
}

CommandReply quit(AppServices &services)
{
    // The answer leaves first.
    QMetaObject::invokeMethod(&services.quit, &QuitSequence::begin, Qt::QueuedConnection);
    return {exitcode::done, u"正在退出"_s, {}};
}

QList<Command> commands(const QStringList &tabs)
{
    return {
        {{.words = u"status"_s, .help = u"程序与各工具的当前状态"_s},
         immediate([](AppServices &services, const ParsedCommand &) { return status(services); })},
        {{.words = u"show"_s,
          .arguments = u"标签页"_s,
          .least = 1,
          .most = 1,
          .help = u"打开主窗口并切换到标签页（%1）"_s.arg(tabs.join(u"、"_s))},
         immediate([](AppServices &services, const ParsedCommand &command) {
             return show(services, command.arguments.first());
         })},
        {{.words = u"hotkeys"_s, .help = u"列出全局快捷键及其状态"_s},
         immediate([](AppServices &services, const ParsedCommand &) { return hotkeys(services.hotkeys); })},
        {{.words = u"quit"_s, .help = u"退出 Velbrix（会先恢复桌面并结束正在进行的录制）"_s},
         immediate([](AppServices &services, const ParsedCommand &) { return quit(services); })},
    };
}

} // namespace

// What belongs to the program as a whole: its own verbs, and the last tab.
Tool settingsTool(const QList<Tool> &others)
{
    const QString identifier = u"settings"_s;
    QStringList tabs;
    for (const Tool &tool : others)
        tabs << tool.identifier;
    return {
        .identifier = identifier,
        .title = u"设置"_s,
        .symbol = u"gearshape"_s,
        .group = {},
        .commands = commands(tabs << identifier),
    };
}

} // namespace velbrix
