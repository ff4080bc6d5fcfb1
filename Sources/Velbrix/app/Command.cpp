#include "app/Command.h"

#include "app/Tools.h"

#include <QDir>
#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString needsConfirmation = u"needsConfirmation"_s;
const QString agreedArgumentsKey = u"arguments"_s;
const QString termsKey = u"terms"_s;

const CommandForm *formBegunBy(const QStringList &words)
{
    for (const Command &command : commands()) {
        const QStringList name = command.form.words.split(u' ');
        if (words.first(std::min(name.size(), words.size())) == name)
            return &command.form;
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
        parts.append((form.most == 1 ? u"[%1]"_s : u"[%1 …]"_s).arg(form.arguments));
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
    for (const Command &command : commands()) {
        if (command.form.words == tool || command.form.words.startsWith(tool + u' '))
            text += usageText(command.form);
    }
    return text;
}

QCoro::Task<CommandReply> answered(CommandReply reply)
{
    co_return reply;
}

} // namespace

CommandReply CommandReply::question(const QString &text, const QStringList &agreed, QJsonObject data,
                                    const QString &terms)
{
    data[needsConfirmation] = true;
    data[agreedArgumentsKey] = QJsonArray::fromStringList(agreed);
    if (!terms.isEmpty())
        data[termsKey] = terms;
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

QString CommandReply::agreedTerms() const
{
    return data.value(termsKey).toString();
}

CommandHandler immediate(std::function<CommandReply(AppServices &, const ParsedCommand &)> act)
{
    return [act = std::move(act)](AppServices &services, const ParsedCommand &command) {
        return answered(act(services, command));
    };
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
    const Command *known = commandOf(command.words);
    if (!known)
        return false;
    const CommandForm &form = known->form;
    const auto isKnown = [&](const QString &option) {
        return std::ranges::find(form.options, option, &CommandOption::name) != form.options.end();
    };
    const auto count = command.arguments.size();
    return count >= form.least && count <= form.most &&
           std::ranges::all_of(command.options.keys(), isKnown) &&
           !(form.takesPath && command.arguments.contains(QString()));
}

ParsedCommand withAbsolutePaths(ParsedCommand command, const QString &folder)
{
    const Command *known = commandOf(command.words);
    if (!known || !known->form.takesPath)
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
        for (const Command &command : commands())
            forms += usageText(command.form);
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
