#include "platform/macos/files/FinderTrash.h"

#include "foundation/SystemClock.h"
#include "support/Test.h"

#include <QCoroTask>

class FinderTrashTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    SystemClock _clock;

    FinderTrash finder(const QByteArray &ending)
    {
        return FinderTrash(_clock, standIn(_folder.filePath(u"osascript"_s), "#!/bin/sh\n" + ending + '\n'));
    }

private Q_SLOTS:
    void whatIsGoneCountsAndNotTheStatus()
    {
        const QString item = _folder.filePath(u"item"_s);
        const QByteArray native = QFile::encodeName(item);
        QVERIFY(QFile::link(u"/nowhere"_s, item));
        QCOMPARE(QCoro::waitFor(finder("exit 0").moveToTrash(item)).error().message,
                 u"访达没有把它移到废纸篓"_s);
        QVERIFY(!QCoro::waitFor(FinderTrash(_clock, u"/nowhere/osascript"_s).moveToTrash(item)));
        QVERIFY(QCoro::waitFor(finder("rm '" + native + "'; exit 1").moveToTrash(item)));
    }

    void takesApplicationsAlone()
    {
        QVERIFY(FinderTrash::isAskedFor(u"/Applications/Tool.app"_s));
        QVERIFY(!FinderTrash::isAskedFor(u"/Users/me/Library/Caches/org.tool"_s));
    }

    void saysWhyItDidNotEmpty()
    {
        QCOMPARE(QCoro::waitFor(finder("echo ' not allowed' >&2; exit 1").empty()).error().message,
                 u"访达没有清空废纸篓：not allowed"_s);
    }

    void knowsWhatLiesInATrash_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isTrashed");
        QTest::newRow("home") << u"/Users/me/.Trash/App.app"_s << true;
        QTest::newRow("volume") << u"/Volumes/My Disk/.Trashes/501/App.app"_s << true;
        QTest::newRow("another's") << u"/Volumes/My Disk/.Trashes/502/App.app"_s << false;
        QTest::newRow("the trash itself") << u"/Users/me/.Trash/"_s << false;
        QTest::newRow("out of it again") << u"/Users/me/.Trash/../Documents/x"_s << false;
        QTest::newRow("elsewhere") << u"/Users/me/.Trash2/x"_s << false;
    }
    void knowsWhatLiesInATrash()
    {
        QFETCH(QString, path);
        QTEST(FinderTrash::isTrashed(path, u"/Users/me"_s, 501), "isTrashed");
    }
};

QTEST_GUILESS_MAIN(FinderTrashTest)
#include "FinderTrashTest.moc"
