#include "app/CommandServer.h"
#include "app/Tools.h"
#include "support/Test.h"

class CommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parses_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<ParsedCommand>("parsed");
        QTest::newRow("verb") << u"status"_s << true << ParsedCommand{u"status"_s, {}, false, {}};
        QTest::newRow("json anywhere")
            << u"--json status"_s << true << ParsedCommand{u"status"_s, {}, true, {}};
        QTest::newRow("two words") << u"record list-windows --json"_s << true
                                   << ParsedCommand{u"record list-windows"_s, {}, true, {}};
        QTest::newRow("argument") << u"show recorder"_s << true
                                  << ParsedCommand{u"show"_s, {u"recorder"_s}, false, {}};
        const auto set = [](const QString &file, const QString &display) {
            ParsedCommand command{u"wallpaper set"_s, {file}, false, {}};
            if (!display.isEmpty())
                command.options.insert(u"--display"_s, display);
            return command;
        };
        QTest::newRow("option") << u"wallpaper set a.mp4 --display 2"_s << true << set(u"a.mp4"_s, u"2"_s);
        QTest::newRow("option first")
            << u"wallpaper set --display=2 a.mp4"_s << true << set(u"a.mp4"_s, u"2"_s);
        const ParsedCommand clean{u"clean run"_s, {u"npm"_s, u"pip"_s}, false, {{u"--yes"_s, QString()}}};
        QTest::newRow("a bare option") << u"clean run --yes npm pip"_s << true << clean;
        QTest::newRow("no argument is enough")
            << u"clean run"_s << true << ParsedCommand{u"clean run"_s, {}, false, {}};
        QTest::newRow("a name with a dash") << u"wallpaper set -a.mp4"_s << true << set(u"-a.mp4"_s, {});
        QTest::newRow("a name like an option")
            << u"wallpaper set -- --json"_s << true << set(u"--json"_s, {});
        for (const auto &line : {u"record"_s,
                                 u"record fly"_s,
                                 u"show"_s,
                                 u"show a b"_s,
                                 u"status now"_s,
                                 u"--verbose"_s,
                                 u"show --help-me"_s,
                                 u"statusx"_s,
                                 u"--json"_s,
                                 u"wallpaper"_s,
                                 u"wallpaper set"_s,
                                 u"wallpaper set "_s,
                                 u"wallpaper set a b"_s,
                                 u"wallpaper set a --display"_s,
                                 u"wallpaper set a --loud 1"_s,
                                 u"wallpaper set --a.mp4"_s,
                                 u"wallpaper play --display 1"_s,
                                 u"wallpaper set a --display 1 --display=2"_s,
                                 u"clean run --yes=1"_s,
                                 u"clean run --yes --yes"_s,
                                 u"apps uninstall"_s})
            QTest::newRow(qPrintable(line)) << line << false << ParsedCommand{};
    }
    void parses()
    {
        QFETCH(QString, line);
        const auto parsed = parseCommand(line.split(u' '));
        QTEST(parsed.has_value(), "valid");
        QTEST(parsed.value_or(ParsedCommand{}), "parsed");
    }

    void pathsAreThoseOfTheTypist_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("sent");
        QTest::newRow("relative") << u"a.mp4"_s << u"/home/我/a.mp4"_s;
        QTest::newRow("above") << u"../b/./a.mp4"_s << u"/home/b/a.mp4"_s;
        QTest::newRow("absolute") << u"/x/a.mp4"_s << u"/x/a.mp4"_s;
        QTest::newRow("dash, space, newline") << u"-a b\nc.mp4"_s << u"/home/我/-a b\nc.mp4"_s;
        QTest::newRow("colon") << u":/a.mp4"_s << u"/home/我/:/a.mp4"_s;
    }
    void pathsAreThoseOfTheTypist()
    {
        QFETCH(QString, typed);
        const ParsedCommand command{u"wallpaper set"_s, {typed}, false, {{u"--display"_s, u"2"_s}}};
        const ParsedCommand sent = withAbsolutePaths(command, u"/home/我"_s);
        QTEST(sent.arguments.first(), "sent");
        QVERIFY(isValid(sent));
        QCOMPARE(parsedCommandFromJson(toJson(sent)), sent);
        const ParsedCommand show{u"show"_s, {typed}, false, {}};
        QCOMPARE(withAbsolutePaths(show, u"/home"_s), show);
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
        QVERIFY(helpText().contains(u"velbrix wallpaper set <视频文件> [--display <编号>]\n"_s));
        QVERIFY(helpText().contains(u"velbrix clean run [清理项 …] [--yes]\n"_s));
        QVERIFY(helpText().contains(u"velbrix backup add <源文件夹> <保存目录> [--kind <backup|sync>]"_s));
        QVERIFY(helpText().contains(u"（wallpaper、recorder、clean、"_s));
        for (const Command &command : commands())
            QVERIFY2(helpText().contains(u"velbrix "_s + command.form.words), qPrintable(command.form.words));
    }

    void misuseIsAnsweredWithWhatFits_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QStringList>("verbs");
        QTest::newRow("too few words")
            << u"backup add source"_s << u"参数不对。用法："_s << QStringList{u"backup add"_s};
        QTest::newRow("tool alone") << u"apps"_s << u"还缺少要做什么。"_s
                                    << QStringList{u"apps list"_s, u"apps uninstall"_s};
        QTest::newRow("unknown verb")
            << u"apps remove"_s << u"无法识别的命令。"_s << QStringList{u"apps list"_s, u"apps uninstall"_s};
        QStringList all;
        for (const Command &command : commands())
            all.append(command.form.words);
        QTest::newRow("unknown tool") << u"bakup list"_s << u"无法识别的命令。"_s << all;
    }

    void misuseIsAnsweredWithWhatFits()
    {
        QFETCH(QString, words);
        QFETCH(QString, first);
        QFETCH(QStringList, verbs);
        const QString text = misuseText(words.split(u' '));
        QCOMPARE(text.section(u'\n', 0, 0), first);
        for (const Command &command : commands())
            QCOMPARE(text.contains(u"velbrix "_s + command.form.words), verbs.contains(command.form.words));
    }

    void aReplyTravelsWhole()
    {
        const CommandReply reply{exitcode::refused, u"原因"_s, {{u"a"_s, 1}}};
        const CommandReply back = commandReplyFromJson(toJson(reply));
        QCOMPARE(back.exitCode, 1);
        QCOMPARE(back.text, u"原因"_s);
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
