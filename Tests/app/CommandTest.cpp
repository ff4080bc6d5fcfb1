#include "app/CommandServer.h"
#include "app/Tools.h"
#include "support/Test.h"

class CommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parses()
    {
        const auto reads = [](const QString &line, const std::optional<ParsedCommand> &parsed) {
            QVERIFY2(parseCommand(line.split(u' ')) == parsed, qPrintable(line));
        };
        const auto set = [](const QString &file, const QMap<QString, QString> &options) {
            return ParsedCommand{u"wallpaper set"_s, {file}, false, options};
        };
        reads(u"status"_s, ParsedCommand{u"status"_s, {}, false, {}});
        reads(u"--json status"_s, ParsedCommand{u"status"_s, {}, true, {}});
        reads(u"record list-windows --json"_s, ParsedCommand{u"record list-windows"_s, {}, true, {}});
        reads(u"show recorder"_s, ParsedCommand{u"show"_s, {u"recorder"_s}, false, {}});
        reads(u"wallpaper set a.mp4 --display 2"_s, set(u"a.mp4"_s, {{u"--display"_s, u"2"_s}}));
        reads(u"wallpaper set --display=2 a.mp4"_s, set(u"a.mp4"_s, {{u"--display"_s, u"2"_s}}));
        reads(u"wallpaper set -a.mp4"_s, set(u"-a.mp4"_s, {}));
        reads(u"wallpaper set -- --json"_s, set(u"--json"_s, {}));
        reads(u"clean run --yes npm pip"_s,
              ParsedCommand{u"clean run"_s, {u"npm"_s, u"pip"_s}, false, {{u"--yes"_s, QString()}}});
        reads(u"clean run"_s, ParsedCommand{u"clean run"_s, {}, false, {}});
        const QString misuse =
            u"record|record fly|show|show a b|status now|--verbose|show --help-me|statusx|--json|wallpaper|"
            "wallpaper set|wallpaper set |wallpaper set a b|wallpaper set a --display|"
            "wallpaper set a --loud 1|wallpaper set --a.mp4|wallpaper play --display 1|"
            "wallpaper set a --display 1 --display=2|clean run --yes=1|clean run --yes --yes|apps uninstall"_s;
        for (const QString &line : misuse.split(u'|'))
            reads(line, std::nullopt);
    }

    void pathsAreThoseOfTheTypist()
    {
        for (const auto &[typed, sent] :
             {std::pair(u"a.mp4"_s, u"/home/我/a.mp4"_s), std::pair(u"../b/./a.mp4"_s, u"/home/b/a.mp4"_s),
              std::pair(u"/x/a.mp4"_s, u"/x/a.mp4"_s), std::pair(u":/a.mp4"_s, u"/home/我/:/a.mp4"_s),
              std::pair(u"-a b\nc.mp4"_s, u"/home/我/-a b\nc.mp4"_s)}) {
            ParsedCommand command{u"wallpaper set"_s, {typed}, false, {{u"--display"_s, u"2"_s}}};
            command = withAbsolutePaths(command, u"/home/我"_s);
            QCOMPARE(command.arguments, QStringList{sent});
            QVERIFY(isValid(command));
            QCOMPARE(parsedCommandFromJson(toJson(command)), command);
            const ParsedCommand show{u"show"_s, {typed}, false, {}};
            QCOMPARE(withAbsolutePaths(show, u"/home"_s), show);
        }
    }

    void whatComesInIsChecked()
    {
        QVERIFY(!isValid(parsedCommandFromJson({})));
        QVERIFY(!isValid({u"show recorder"_s, {}, false, {}}));
        QVERIFY(!isValid({u"status"_s, {}, false, {{u"--display"_s, u"1"_s}}}));
        QVERIFY(!isValid({u"wallpaper set"_s, {u""_s}, false, {}}));
    }

    void theHelpNamesEveryVerb()
    {
        QVERIFY(helpText().contains(u"velbrix backup add <源文件夹> <保存目录> [--kind <backup|sync>]"_s));
        QVERIFY(helpText().contains(u"（wallpaper、recorder、clean、"_s));
        for (const Command &command : commands())
            QVERIFY2(helpText().contains(u"velbrix "_s + command.form.words), qPrintable(command.form.words));
    }

    void misuseIsAnsweredWithWhatFits()
    {
        // The first line, and the verbs of the others.
        const auto answer = [](const QString &words) {
            const QString text = misuseText(words.split(u' '));
            QStringList found{text.section(u'\n', 0, 0)};
            for (const Command &command : commands()) {
                if (text.contains(u"velbrix "_s + command.form.words))
                    found.append(command.form.words);
            }
            return found;
        };
        const QStringList ofApps{u"apps list"_s, u"apps uninstall"_s};
        QCOMPARE(answer(u"backup add source"_s), (QStringList{u"参数不对。用法："_s, u"backup add"_s}));
        QCOMPARE(answer(u"apps"_s), QStringList{u"还缺少要做什么。"_s} + ofApps);
        QCOMPARE(answer(u"apps remove"_s), QStringList{u"无法识别的命令。"_s} + ofApps);
        QCOMPARE(answer(u"bakup list"_s).size(), 1 + commands().size());
    }

    void aReplyTravelsWhole()
    {
        const CommandReply reply{exitcode::refused, u"原因"_s, {{u"a"_s, 1}}};
        const CommandReply back = commandReplyFromJson(toJson(reply));
        QCOMPARE(back.exitCode, exitcode::refused);
        QCOMPARE(back.text, reply.text);
        QCOMPARE(back.data, reply.data);
        QCOMPARE(commandReplyFromJson({}).exitCode, exitcode::refused);
        QVERIFY(!back.isQuestion());
        const CommandReply question =
            commandReplyFromJson(toJson(CommandReply::question(u"真的？"_s, {u"a b"_s})));
        QVERIFY(question.isQuestion());
        QCOMPARE(question.agreedArguments(), QStringList{u"a b"_s});
    }
};

QTEST_GUILESS_MAIN(CommandTest)
#include "CommandTest.moc"
