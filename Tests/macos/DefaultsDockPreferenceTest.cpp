#include "platform/macos/desktop/DefaultsDockPreference.h"

#include "foundation/SystemClock.h"
#include "support/CapturedLog.h"
#include "support/Test.h"

namespace {

// Programs of the same interface, which write down what they were asked.
class DockRig {
    QTemporaryDir _folder; // first, because the programs lie in it

public:
    SystemClock clock;
    DefaultsDockPreference::Programs programs{program(u"defaults"_s), program(u"killall"_s)};

    // A stand-in whose script ends with these commands.
    QString program(const QString &name, const QString &ending = u"exit 0"_s) const
    {
        return standIn(_folder.filePath(name),
                       u"#!/bin/sh\necho %1 \"$@\" >> '%2'\n%3\n"_s.arg(name, logPath(), ending).toUtf8());
    }
    QStringList asked() const
    {
        QFile log(logPath());
        return log.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(log.readAll()).split(u'\n', Qt::SkipEmptyParts)
                   : QStringList();
    }
    template <typename Value> Result<Value> answerOf(QCoro::Task<Result<Value>> task)
    {
        std::optional<Result<Value>> answer;
        task.then([&](Result<Value> value) { answer = std::move(value); });
        if (!QTest::qWaitFor([&] { return answer.has_value(); }, 20000))
            return failure(u"no answer"_s);
        return *answer;
    }
    Result<bool> autoHide() { return answerOf(DefaultsDockPreference(clock, programs).autoHide()); }
    // The object is gone before the programs end.
    Result<void> setAutoHide(bool hides)
    {
        return answerOf(DefaultsDockPreference(clock, programs).setAutoHide(hides));
    }

private:
    QString logPath() const { return _folder.filePath(u"log"_s); }
};

} // namespace

class DefaultsDockPreferenceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysThatItCannotRead()
    {
        DockRig rig;
        rig.programs.defaults = u"/nowhere/defaults"_s;
        QCOMPARE(rig.autoHide().error().message, u"无法读取程序坞的设置"_s);
    }

    void writesAndThenRestartsTheDock()
    {
        DockRig rig;
        rig.program(u"defaults"_s, u"sleep 0.1; echo written >> \"$(dirname \"$0\")/log\""_s);
        QVERIFY(rig.setAutoHide(true));
        QCOMPARE(rig.asked(), (QStringList{u"defaults write com.apple.dock autohide -bool true"_s,
                                           u"written"_s, u"killall Dock"_s}));
    }

    void namesTheStepThatFailed_data()
    {
        QTest::addColumn<QString>("defaults"); // the script's ending; empty for no program
        QTest::addColumn<QString>("killall");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("started");
        QTest::newRow("no defaults") << QString() << u"exit 0"_s << u"failed to write Dock autohide: "_s << 0;
        QTest::newRow("defaults") << u"exit 3"_s << u"exit 0"_s << u"defaults write Dock autohide failed: 3"_s
                                  << 1;
        QTest::newRow("no killall") << u"exit 0"_s << QString() << u"failed to reload Dock: "_s << 1;
        QTest::newRow("killall") << u"exit 0"_s << u"exit 1"_s << u"killall Dock failed: 1"_s << 2;
    }
    void namesTheStepThatFailed()
    {
        QFETCH(QString, defaults);
        QFETCH(QString, killall);
        QFETCH(QString, message);
        DockRig rig;
        rig.programs.defaults = defaults.isEmpty() ? u"/nowhere/x"_s : rig.program(u"defaults"_s, defaults);
        rig.programs.killall = killall.isEmpty() ? u"/nowhere/x"_s : rig.program(u"killall"_s, killall);
        CapturedLog log;
        const Result<void> written = rig.setAutoHide(true);
        QCOMPARE(written, Result<void>(failure(u"无法更改程序坞的设置"_s)));
        const QStringList lines = log.take(u"Wallpaper"_s);
        QCOMPARE(lines.size(), 1);
        const QString &said = lines.first();
        // The words after a launch failure are the system's.
        QVERIFY2(message.endsWith(u' ') ? said.startsWith(message) && said != message : said == message,
                 qPrintable(said));
        QTEST(static_cast<int>(rig.asked().size()), "started");
    }
};

QTEST_GUILESS_MAIN(DefaultsDockPreferenceTest)
#include "DefaultsDockPreferenceTest.moc"
