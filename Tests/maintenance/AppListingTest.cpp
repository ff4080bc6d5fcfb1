#include "maintenance/uninstall/AppListing.h"
#include "support/Test.h"

class AppListingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anyLikenessWillDo()
    {
        const SelfTraits own = {u"/opt/Velbrix/bin/tool"_s, u"ToolBox"_s, u"org.own.tool"_s};
        const QString other = u"/Applications/Other.app"_s;
        const std::initializer_list<SelfTraits> alike = {{u"/OPT/velbrix/BIN/Tool"_s, u"Other"_s, {}},
                                                         {u"/tmp/VELBRIX.app"_s, u"Other"_s, {}},
                                                         {other, u"toolBox"_s, {}},
                                                         {other, u"VelBrix"_s, {}},
                                                         {other, u"Other"_s, u"ORG.own.Tool"_s}};
        for (const SelfTraits &each : alike)
            QVERIFY2(isSelf(each, own), qPrintable(each.path + each.name));
        const std::initializer_list<SelfTraits> strangers = {
            {other, u"Other"_s, u"com.other"_s}, {u"/tmp/NotVelbrix.app"_s, u"NotVelbrix"_s, {}},
            {other, u"Velbrix Helper"_s, {}},    {u"/tmp/Velbrix.app/Inner.app"_s, u"Inner"_s, {}},
            {other, {}, u"org.own.tool2"_s},     {other, {}, {}}};
        for (const SelfTraits &each : strangers)
            QVERIFY2(!isSelf(each, own), qPrintable(each.path + each.name));
        QVERIFY(!isSelf({u"/a"_s, {}, {}}, {u"/b"_s, {}, {}})); // both without an identifier
    }

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
