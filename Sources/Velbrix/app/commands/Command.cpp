#include "app/commands/Command.h"

#include "app/AppTab.h"

#include <QDir>
#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int anyNumber = 1000;
const QString needsConfirmation = u"needsConfirmation"_s;
const QString agreedArgumentsKey = u"arguments"_s;

QString tabIdentifiers()
{
    QStringList identifiers;
    for (const AppTabInfo &info : appTabs())
        identifiers.append(info.identifier);
    return identifiers.join(u"、"_s);
}

const CommandForm *formBegunBy(const QStringList &words)
{
    for (const CommandForm &form : commandForms()) {
        const QStringList name = form.words.split(u' ');
        if (words.first(std::min(name.size(), words.size())) == name)
            return &form;
    }
    return nullptr;
}

bool takesValue(const CommandForm &form, const QString &name)
{
    const auto known = std::ranges::find(form.options, name, &CommandOption::name);
    return known == form.options.end() || !known->value.isEmpty();
}

// False when an option lacks its value, has one too many or is said twice.
bool takeOptions(const CommandForm &form, QStringList &words, QMap<QString, QString> &options)
{
    QStringList rest;
    while (!words.isEmpty()) {
        const QString word = words.takeFirst();
        if (!word.startsWith(u"--")) {
            rest.append(word);
            continue;
        }
        const auto equals = word.indexOf(u'=');
        const QString name = word.first(equals < 0 ? word.size() : equals);
        const bool wantsValue = takesValue(form, name);
        if (options.contains(name) || (equals >= 0 && !wantsValue) ||
            (equals < 0 && wantsValue && words.isEmpty()))
            return false;
        if (equals >= 0)
            options.insert(name, word.mid(equals + 1));
        else
            options.insert(name, wantsValue ? words.takeFirst() : QString());
    }
    words = rest;
    return true;
}

// Columns of a terminal, in which a Chinese character takes two.
qsizetype columns(const QString &text)
{
    constexpr char16_t firstWide = 0x1100;
    return text.size() + std::ranges::count_if(text, [](QChar c) { return c.unicode() >= firstWide; });
}

QStringList usageParts(const CommandForm &form)
{
    QStringList parts = {u"velbrix "_s + form.words};
    if (form.least > 0)
        parts.append(u'<' + QString(form.arguments).replace(u" "_s, u"> <"_s) + u'>');
    else if (!form.arguments.isEmpty())
        parts.append(u"[%1 …]"_s.arg(form.arguments));
    for (const CommandOption &option : form.options)
        parts.append(option.value.isEmpty() ? u"[%1]"_s.arg(option.name)
                                            : u"[%1 <%2>]"_s.arg(option.name, option.value));
    return parts;
}

// How it is said, and beside or below that what it does.
QString usageText(const CommandForm &form)
{
    constexpr int widest = 78;
    constexpr int helpColumn = 30;
    constexpr int indent = 6;
    QString text;
    QString line = u" "_s;
    for (const QString &part : usageParts(form)) {
        if (columns(line) + 1 + columns(part) > widest) {
            text += line + u'\n';
            line = QString(indent - 1, u' ');
        }
        line += u' ' + part;
    }
    if (text.isEmpty() && columns(line) < helpColumn)
        return line + QString(helpColumn - columns(line), u' ') + form.help + u'\n';
    return text + line + u'\n' + QString(indent, u' ') + form.help + u'\n';
}

QString formsText(const QString &tool)
{
    QString text;
    for (const CommandForm &form : commandForms()) {
        if (form.words == tool || form.words.startsWith(tool + u' '))
            text += usageText(form);
    }
    return text;
}

} // namespace

CommandReply CommandReply::question(const QString &text, const QStringList &agreed, QJsonObject data)
{
    data[needsConfirmation] = true;
    data[agreedArgumentsKey] = QJsonArray::fromStringList(agreed);
    return {exitcode::refused, text, data};
}

bool CommandReply::isQuestion() const
{
    return data.value(needsConfirmation).toBool();
}

QStringList CommandReply::agreedArguments() const
{
    return data.value(agreedArgumentsKey).toVariant().toStringList();
}

const QList<CommandForm> &commandForms()
{
    static const QList<CommandForm> forms = {
        {u"status"_s, {}, 0, 0, u"程序、壁纸与录制的当前状态"_s},
        {u"show"_s, u"标签页"_s, 1, 1, u"打开主窗口并切换到标签页（%1）"_s.arg(tabIdentifiers())},
        {u"record start"_s, {}, 0, 0, u"按录制面板的设置开始录制"_s},
        {u"record stop"_s, {}, 0, 0, u"停止录制并等待文件校验完成"_s},
        {u"record toggle"_s, {}, 0, 0, u"开始全屏录制，或停止当前录制"_s},
        {u"record list-windows"_s, {}, 0, 0, u"列出可录制的窗口"_s},
        {u"record list-devices"_s, {}, 0, 0, u"列出扬声器与麦克风"_s},
        {u"wallpaper set"_s,
         u"视频文件"_s,
         1,
         1,
         u"选择并播放视频；编号见 wallpaper status，1 是主显示器"_s,
         true,
         {{u"--display"_s, u"编号"_s}}},
        {u"wallpaper play"_s, {}, 0, 0, u"播放或继续播放动态壁纸"_s},
        {u"wallpaper pause"_s, {}, 0, 0, u"暂停动态壁纸"_s},
        {u"wallpaper stop"_s, {}, 0, 0, u"停止动态壁纸并恢复原来的桌面图片"_s},
        {u"wallpaper status"_s, {}, 0, 0, u"动态壁纸与各显示器的当前状态"_s},
        {u"clean list"_s, {}, 0, 0, u"列出清理项及其大小"_s},
        {u"clean preview"_s, u"清理项"_s, 0, anyNumber, u"显示将被清理的内容，不做任何改动"_s},
        {u"clean run"_s,
         u"清理项"_s,
         0,
         anyNumber,
         u"清理列出的清理项；没有列出时清理已勾选的"_s,
         false,
         {{u"--yes"_s, {}}}},
        {u"apps list"_s, {}, 0, 0, u"列出已安装的应用"_s},
        {u"apps uninstall"_s,
         u"应用"_s,
         1,
         1,
         u"卸载应用；--dry-run 只显示将被移走的内容"_s,
         false,
         {{u"--mode"_s, u"full|app|custom"_s}, {u"--dry-run"_s, {}}, {u"--yes"_s, {}}}},
        {u"backup list"_s, {}, 0, 0, u"列出备份任务"_s},
        {u"backup add"_s,
         u"源文件夹 保存目录"_s,
         2,
         2,
         u"添加备份任务；时间为 时:分、日@时:分、月-日@时:分；几个模式用逗号隔开"_s,
         true,
         {{u"--kind"_s, u"backup|sync"_s},
          {u"--name"_s, u"名称"_s},
          {u"--daily"_s, u"时间"_s},
          {u"--monthly"_s, u"时间"_s},
          {u"--yearly"_s, u"时间"_s},
          {u"--keep"_s, u"份数"_s},
          {u"--exclude"_s, u"模式"_s}}},
        {u"backup run"_s, u"任务"_s, 1, 1, u"立即运行任务并等待结果"_s, false, {{u"--yes"_s, {}}}},
        {u"backup remove"_s, u"任务"_s, 1, 1, u"删除任务；已备份的文件保留"_s, false, {{u"--yes"_s, {}}}},
        {u"hotkeys"_s, {}, 0, 0, u"列出全局快捷键及其状态"_s},
        {u"quit"_s, {}, 0, 0, u"退出 Velbrix（会先恢复桌面并结束正在进行的录制）"_s},
    };
    return forms;
}

std::optional<ParsedCommand> parseCommand(const QStringList &words)
{
    const auto end = words.indexOf(u"--"_s);
    QStringList read = end < 0 ? words : words.first(end);
    ParsedCommand parsed;
    parsed.json = read.removeAll(u"--json"_s) > 0;
    const CommandForm *form = formBegunBy(read);
    if (!form)
        return std::nullopt;
    parsed.words = form->words;
    read.remove(0, form->words.count(u' ') + 1);
    if (!takeOptions(*form, read, parsed.options))
        return std::nullopt;
    parsed.arguments = end < 0 ? read : read + words.mid(end + 1);
    return isValid(parsed) ? std::optional(parsed) : std::nullopt;
}

bool isValid(const ParsedCommand &command)
{
    const auto form = std::ranges::find(commandForms(), command.words, &CommandForm::words);
    if (form == commandForms().end())
        return false;
    const auto isKnown = [&](const QString &option) {
        return std::ranges::find(form->options, option, &CommandOption::name) != form->options.end();
    };
    const auto count = command.arguments.size();
    return count >= form->least && count <= form->most &&
           std::ranges::all_of(command.options.keys(), isKnown) &&
           !(form->takesPath && command.arguments.contains(QString()));
}

ParsedCommand withAbsolutePaths(ParsedCommand command, const QString &folder)
{
    const auto form = std::ranges::find(commandForms(), command.words, &CommandForm::words);
    if (form == commandForms().end() || !form->takesPath)
        return command;
    for (QString &path : command.arguments) {
        if (!path.startsWith(u'/'))
            path = folder + u'/' + path;
        path = QDir::cleanPath(path);
    }
    return command;
}

QString helpText(const QString &tool)
{
    QString forms = tool.isEmpty() ? QString() : formsText(tool);
    if (forms.isEmpty()) {
        forms = u"  velbrix                     启动，或把已运行的窗口带到前面\n"
                "  velbrix --background        启动但不显示窗口\n"_s;
        for (const CommandForm &form : commandForms())
            forms += usageText(form);
    }
    return u"用法：\n"_s + forms +
           u"选项：--json 输出稳定的英文键；--help 显示本说明；--version 显示版本；-- 之后都是参数\n"
           "退出码：0 完成，1 被拒绝并说明原因，2 用法错误，3 程序未运行\n"_s;
}

QString misuseText(const QStringList &words)
{
    if (const CommandForm *form = formBegunBy(words))
        return u"参数不对。用法：\n"_s + usageText(*form);
    const QString tool = words.value(0);
    const bool isTool = !formsText(tool).isEmpty();
    return (isTool && words.size() == 1 ? u"还缺少要做什么。\n"_s : u"无法识别的命令。\n"_s) + helpText(tool);
}

} // namespace velbrix
