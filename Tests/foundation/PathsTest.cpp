#include "foundation/Paths.h"
#include "support/Test.h"

class PathsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void knowsWhatLiesInAFolder()
    {
        enum Place { inside, itself, elsewhere };
        using Pairs = QList<std::pair<QString, QString>>; // a path and a folder
        const auto verify = [](Place place, const Pairs &pairs) {
            for (const auto &[path, folder] : pairs) {
                const QByteArray which = (path + u" in "_s + folder).toUtf8();
                QVERIFY2(isWithin(path, folder) == (place != elsewhere), which);
                QVERIFY2(isInside(path, folder) == (place == inside), which);
                QVERIFY2(isWithin(path.toUtf8(), folder.toUtf8()) == (place != elsewhere), which);
                QVERIFY2(isInside(path.toUtf8(), folder.toUtf8()) == (place == inside), which);
            }
        };
        verify(inside,
               {{u"/a/b"_s, u"/a"_s}, {u"/a/b/c"_s, u"/a"_s}, {u"/a/b"_s, u"/a/"_s}, {u"/a"_s, u"/"_s}});
        verify(itself, {{u"/a"_s, u"/a"_s}, {u"/a/"_s, u"/a"_s}, {u"/a"_s, u"/a/"_s}, {u"/"_s, u"/"_s}});
        verify(elsewhere, {{u"/ab"_s, u"/a"_s}, {u"/a"_s, u"/a/b"_s}, {u"a/b"_s, u"/"_s}});
        verify(elsewhere, {{{}, u"/"_s}, {u"/a"_s, {}}, {{}, {}}});
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

    void splits()
    {
        QCOMPARE(splitPath("/a/b"), std::pair("/a"_ba, "b"_ba));
        QCOMPARE(splitPath("/a"), std::pair("/"_ba, "a"_ba));
        QCOMPARE(splitPath("/"), std::pair("/"_ba, ""_ba));
    }
};

QTEST_GUILESS_MAIN(PathsTest)
#include "PathsTest.moc"
