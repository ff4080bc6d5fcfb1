#include "foundation/Paths.h"
#include "support/Test.h"

class PathsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void knowsWhatLiesInAFolder_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<bool>("within");
        QTest::addColumn<bool>("inside");
        QTest::newRow("below") << u"/a/b"_s << u"/a"_s << true << true;
        QTest::newRow("far below") << u"/a/b/c"_s << u"/a"_s << true << true;
        QTest::newRow("itself") << u"/a"_s << u"/a"_s << true << false;
        QTest::newRow("itself, with a slash") << u"/a/"_s << u"/a"_s << true << false;
        QTest::newRow("a longer name") << u"/ab"_s << u"/a"_s << false << false;
        QTest::newRow("above") << u"/a"_s << u"/a/b"_s << false << false;
        QTest::newRow("folder with a slash") << u"/a/b"_s << u"/a/"_s << true << true;
        QTest::newRow("itself without the slash") << u"/a"_s << u"/a/"_s << true << false;
        QTest::newRow("everything is in the root") << u"/a"_s << u"/"_s << true << true;
        QTest::newRow("the root") << u"/"_s << u"/"_s << true << false;
        QTest::newRow("relative") << u"a/b"_s << u"/"_s << false << false;
        QTest::newRow("no path") << QString() << u"/"_s << false << false;
        QTest::newRow("no folder") << u"/a"_s << QString() << false << false;
        QTest::newRow("neither") << QString() << QString() << false << false;
    }
    void knowsWhatLiesInAFolder()
    {
        QFETCH(QString, path);
        QFETCH(QString, folder);
        QTEST(isWithin(path, folder), "within");
        QTEST(isWithin(path.toUtf8(), folder.toUtf8()), "within");
        QTEST(isInside(path, folder), "inside");
        QTEST(isInside(path.toUtf8(), folder.toUtf8()), "inside");
    }

    void resolvesLinks()
    {
        const QTemporaryDir place;
        const QString root = QDir(place.path()).canonicalPath();
        const QString link = root + u"/link"_s;
        QVERIFY(QDir(root).mkdir(u"folder"_s));
        QVERIFY(QFile::link(root + u"/folder"_s, link));
        QCOMPARE(canonicalPath(link), root + u"/folder"_s);
        QCOMPARE(canonicalPath(QFile::encodeName(link)), QFile::encodeName(root + u"/folder"_s));
        QCOMPARE(resolvedPath(link), root + u"/folder"_s);
        QVERIFY(canonicalPath(root + u"/none"_s).isEmpty());
        QVERIFY(canonicalPath(QFile::encodeName(root + u"/none"_s)).isEmpty());
        QCOMPARE(resolvedPath(root + u"/none/../gone/"_s), root + u"/gone"_s);
        QVERIFY(isEmptyFolder(link));
        QVERIFY(!isEmptyFolder(root) && !isEmptyFolder(root + u"/none"_s));
    }

    void splits_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("folder");
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("deep") << QByteArray("/a/b") << QByteArray("/a") << QByteArray("b");
        QTest::newRow("below the root") << QByteArray("/a") << QByteArray("/") << QByteArray("a");
        QTest::newRow("the root") << QByteArray("/") << QByteArray("/") << QByteArray();
    }
    void splits()
    {
        QFETCH(QByteArray, path);
        QTEST(splitPath(path).first, "folder");
        QTEST(splitPath(path).second, "name");
    }
};

QTEST_GUILESS_MAIN(PathsTest)
#include "PathsTest.moc"
