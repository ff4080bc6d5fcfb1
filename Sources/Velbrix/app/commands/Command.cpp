#include "app/commands/Command.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

const QList<CommandForm> &commandForms()
{
    static const QList<CommandForm> forms = {
        {u"status"_s, {}, 0, 0, u"程序与录制的当前状态"_s},
        {u"show"_s, u"标签页"_s, 1, 1, u"打开主窗口并切换到标签页（recorder、settings）"_s},
        {u"record start"_s, {}, 0, 0, u"按录制面板的设置开始录制"_s},
        {u"record stop"_s, {}, 0, 0, u"停止录制并等待文件校验完成"_s},
        {u"record toggle"_s, {}, 0, 0, u"开始全屏录制，或停止当前录制"_s},
        {u"record list-windows"_s, {}, 0, 0, u"列出可录制的窗口"_s},
        {u"record list-devices"_s, {}, 0, 0, u"列出扬声器与麦克风"_s},
        {u"hotkeys"_s, {}, 0, 0, u"列出全局快捷键及其状态"_s},
        {u"quit"_s, {}, 0, 0, u"退出 Velbrix（会先结束正在进行的录制）"_s},
    };
    return forms;
}

std::optional<ParsedCommand> parseCommand(QStringList words)
{
    ParsedCommand parsed;
    parsed.json = words.removeAll(u"--json"_s) > 0;
    for (const CommandForm &form : commandForms()) {
        const QStringList name = form.words.split(u' ');
        if (words.first(std::min(name.size(), words.size())) != name)
            continue;
        parsed.words = form.words;
        parsed.arguments = words.mid(name.size());
        const auto count = parsed.arguments.size();
        const bool hasOption =
            std::ranges::any_of(parsed.arguments, [](const QString &word) { return word.startsWith(u"--"); });
        if (count < form.least || count > form.most || hasOption)
            return std::nullopt;
        return parsed;
    }
    return std::nullopt;
}

QString helpText()
{
    QString text = u"用法：\n"
                   "  velbrix                     启动，或把已运行的窗口带到前面\n"
                   "  velbrix --background        启动但不显示窗口\n"_s;
    for (const CommandForm &form : commandForms()) {
        const QString usage =
            form.arguments.isEmpty() ? form.words : form.words + u" <"_s + form.arguments + u'>';
        text += u"  velbrix %1%2\n"_s.arg(usage.leftJustified(20), form.help);
    }
    return text + u"选项：--json 输出稳定的英文键；--help 显示本说明；--version 显示版本\n"
                  "退出码：0 完成，1 被拒绝并说明原因，2 用法错误，3 程序未运行\n"_s;
}

} // namespace velbrix
