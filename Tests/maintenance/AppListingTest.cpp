#include "maintenance/uninstall/AppListing.h"
#include "support/Test.h"

class AppListingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anyLikenessWillDo_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<bool>("expected");

        const QString other = u"/Applications/Other.app"_s;
        QTest::newRow("stranger") << other << u"Other"_s << u"com.other"_s << false;
        QTest::newRow("path in capitals") << u"/OPT/velbrix/BIN/Tool"_s << u"Other"_s << u""_s << true;
        QTest::newRow("bundle anywhere") << u"/tmp/VELBRIX.app"_s << u"Other"_s << u""_s << true;
        QTest::newRow("longer bundle name") << u"/tmp/NotVelbrix.app"_s << u"NotVelbrix"_s << u""_s << false;
        QTest::newRow("inside such a bundle")
            << u"/tmp/Velbrix.app/Inner.app"_s << u"Inner"_s << u""_s << false;
        QTest::newRow("own name") << other << u"toolBox"_s << u""_s << true;
        QTest::newRow("the product's name") << other << u"VelBrix"_s << u""_s << true;
        QTest::newRow("part of the name") << other << u"Velbrix Helper"_s << u""_s << false;
        QTest::newRow("identifier") << other << u"Other"_s << u"ORG.own.Tool"_s << true;
        QTest::newRow("longer identifier") << other << u"Other"_s << u"org.own.tool2"_s << false;
        QTest::newRow("nothing known") << other << u""_s << u""_s << false;
    }

    void anyLikenessWillDo()
    {
        QFETCH(QString, path);
        QFETCH(QString, name);
        QFETCH(QString, identifier);
        const SelfTraits own = {u"/opt/Velbrix/bin/tool"_s, u"ToolBox"_s, u"org.own.tool"_s};
        QTEST(isSelf({path, name, identifier}, own), "expected");
    }

    void withoutAnIdentifierNobodyIsAlike() { QVERIFY(!isSelf({u"/a"_s, {}, {}}, {u"/b"_s, {}, {}})); }

    void linksAreFollowed()
    {
        const QTemporaryDir folder;
        const QString bundle = folder.filePath(u"Velbrix.app"_s);
        const QString link = folder.filePath(u"Innocent.app"_s);
        QVERIFY(QDir().mkpath(bundle));
        QVERIFY(QFile::link(bundle, link));
        InstalledApplication application;
        application.path = link;
        application.name = u"Innocent"_s;
        QVERIFY(isSelf(selfTraits(application), {u"/elsewhere"_s, u"Velbrix"_s, {}}));
        application.path = folder.filePath(u"Gone.app"_s);
        QCOMPARE(selfTraits(application).path, application.path);
    }
};

QTEST_GUILESS_MAIN(AppListingTest)
#include "AppListingTest.moc"
