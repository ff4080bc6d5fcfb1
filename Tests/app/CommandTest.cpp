#include "app/commands/Command.h"
#include "app/CommandServer.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace velbrix;

class CommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parses_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<ParsedCommand>("parsed");
        QTest::newRow("verb") << u"status"_s << true << ParsedCommand{u"status"_s, {}, false};
        QTest::newRow("json anywhere") << u"--json status"_s << true << ParsedCommand{u"status"_s, {}, true};
        QTest::newRow("two words") << u"record list-windows --json"_s << true
                                   << ParsedCommand{u"record list-windows"_s, {}, true};
        QTest::newRow("argument") << u"show recorder"_s << true
                                  << ParsedCommand{u"show"_s, {u"recorder"_s}, false};
        for (const auto &line : {u"record"_s, u"record fly"_s, u"show"_s, u"show a b"_s, u"status now"_s,
                                 u"--verbose"_s, u"show --help-me"_s, u"statusx"_s, u"--json"_s})
            QTest::newRow(qPrintable(line)) << line << false << ParsedCommand{};
    }
    void parses()
    {
        QFETCH(QString, line);
        const auto parsed = parseCommand(line.split(u' '));
        QTEST(parsed.has_value(), "valid");
        QTEST(parsed.value_or(ParsedCommand{}), "parsed");
    }

    void theHelpNamesEveryVerb()
    {
        for (const CommandForm &form : commandForms())
            QVERIFY2(helpText().contains(u"velbrix "_s + form.words), qPrintable(form.words));
    }

    void aReplyTravelsWhole()
    {
        const CommandReply reply{exitcode::refused, u"原因"_s, {{u"a"_s, 1}}};
        const CommandReply back = commandReplyFromJson(toJson(reply));
        QCOMPARE(back.exitCode, 1);
        QCOMPARE(back.text, u"原因"_s);
        QCOMPARE(back.data, reply.data);
        QCOMPARE(commandReplyFromJson({}).exitCode, exitcode::refused);
    }
};

QTEST_GUILESS_MAIN(CommandTest)
#include "CommandTest.moc"
