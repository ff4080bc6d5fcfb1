#include "platform/macos/applications/BundleFolders.h"
#include "support/Test.h"

class BundleFoldersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void searchesTheLibraryInOrder()
    {
        QCOMPARE(
            libraryFoldersUnder(u"/Users/a"_s),
            (QList<LibraryFolder>{{LibraryKind::preferences, u"/Users/a/Library/Preferences"_s},
                                  {LibraryKind::appSupport, u"/Users/a/Library/Application Support"_s},
                                  {LibraryKind::caches, u"/Users/a/Library/Caches"_s},
                                  {LibraryKind::containers, u"/Users/a/Library/Containers"_s},
                                  {LibraryKind::savedState, u"/Users/a/Library/Saved Application State"_s},
                                  {LibraryKind::logs, u"/Users/a/Library/Logs"_s},
                                  {LibraryKind::webKit, u"/Users/a/Library/WebKit"_s}}));
    }

    void onlyADownloadIsMisplaced()
    {
        const auto isLeft = [](const QString &bundle) { return isLeftByDownload(bundle, u"/Users/a"_s); };
        QVERIFY(isLeft(u"/Users/a/Downloads/Velbrix.app"_s));
        QVERIFY(isLeft(u"/Volumes/Velbrix/Velbrix.app"_s));
        QVERIFY(isLeft(u"/private/var/folders/x/T/AppTranslocation/1-2/d/Velbrix.app"_s));
        QVERIFY(!isLeft(u"/Applications/Velbrix.app"_s) && !isLeft(u"/Users/a/build/Velbrix.app"_s));
    }

    void listsBundlesByTheirEnding()
    {
        QTemporaryDir folder;
        for (const QString &name : {u"Zoom.app"_s, u"A.b.app"_s, u"Utilities"_s, u"Note.APP"_s, u".app"_s})
            QVERIFY(QDir(folder.path()).mkdir(name));
        QVERIFY(QFile::link(folder.filePath(u"missing"_s), folder.filePath(u"Link.app"_s)));
        const auto bundles = bundlesIn(folder.path());
        QVERIFY(bundles);
        QCOMPARE(*bundles, (QStringList{folder.filePath(u"A.b.app"_s), folder.filePath(u"Link.app"_s),
                                        folder.filePath(u"Zoom.app"_s)}));
        QCOMPARE(bundleName(bundles->first()), u"A.b"_s);

        QVERIFY(QDir(folder.path()).mkpath(u"Utilities/Tool.app"_s));
        QVERIFY(
            bundlesBeside(folder.path(), u"/nowhere"_s).contains(folder.filePath(u"Utilities/Tool.app"_s)));

        const auto none = bundlesIn(folder.filePath(u"none"_s));
        QVERIFY(!none);
        QCOMPARE(none.error().message, u"无法读取文件夹 "_s + folder.filePath(u"none"_s));
    }
};

QTEST_GUILESS_MAIN(BundleFoldersTest)
#include "BundleFoldersTest.moc"
