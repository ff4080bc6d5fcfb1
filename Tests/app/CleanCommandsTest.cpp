#include "support/CommandRig.h"

#include <QJsonArray>

namespace {

// Only items whose folders lie in the rig's own home are ever cleaned here.
struct Rig : ServicesRig {
    explicit Rig(bool agreed = true)
        : ServicesRig({{u"Velbrix_Privacy_firstLaunchAccepted"_s, true},
                       {u"Velbrix_Privacy_consent_systemCleanup"_s, agreed}})
    {
        make();
        QDir().mkpath(folder + u"/a/b"_s);
        writeFile(folder + u"/file"_s, "1234");
        host.diskUsage.sizes = {{QFile::encodeName(QDir(folder).canonicalPath()), 5000}};
    }

    CommandReply reply; // the newest
    QString said(const QString &line) { return words(reply = ask(*services, clock, line)); }
    bool isEmpty() const { return QDir(folder).isEmpty(); }

    const QString folder = files.filePath(u".npm/_cacache"_s);
};

} // namespace

class CleanCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lists()
    {
        Rig rig;
        rig.host.programs.names = {u"npm"_s};
        QVERIFY(rig.said(u"clean list"_s).contains(u"[x] npm  npm 缓存  5 KB  （正在运行）"_s));
        const QJsonArray items = rig.reply.data[u"items"_s].toArray();
        QVERIFY(std::ranges::any_of(items, [](const QJsonValue &item) {
            return item[u"id"_s] == u"npm"_s && item[u"bytes"_s] == 5000;
        }));
    }

    void nothingGoesWithoutYes()
    {
        Rig rig;
        for (const QString &words : {u"clean preview"_s, u"clean run"_s}) {
            QVERIFY(rig.said(words + u" npm"_s).contains(u"/_cacache/file"_s));
            QCOMPARE(rig.reply.isQuestion(), words == u"clean run"_s);
            const QJsonValue entry = rig.reply.data[u"items"_s][0][u"entries"_s][1];
            QVERIFY(entry[u"path"_s].toString().endsWith(u"/file"_s) && entry[u"included"_s].toBool());
            QVERIFY(!rig.isEmpty());
        }
    }

    void toldIsOnlyWhatGoes()
    {
        Rig rig;
        const QByteArray file = QFile::encodeName(QFileInfo(rig.folder + u"/file"_s).canonicalFilePath());
        rig.host.diskUsage.sizes[file] = 2'000'000;
        QCOMPARE((rig.said(u"clean preview npm"_s), rig.reply.data[u"items"_s][0][u"goes"_s]), 2'000'000);
        CleanupDetails &details = rig.services->cleaner.details();
        details.open(u"npm"_s); // what the window shows is not what is there by now
        QVERIFY(waitFor([&] { return !details.contents().value(u"npm"_s).isMeasuring; }));
        writeFile(rig.folder + u"/later"_s);
        details.setIncluded(u"npm"_s, file, false);
        const QString told = rig.said(u"clean preview npm"_s);
        QVERIFY(told.contains(u"零 KB  ~/.npm/_cacache/later\n"_s) && told.contains(u"/file：已排除"_s));
        QCOMPARE(rig.reply.data[u"items"_s][0][u"goes"_s], 0);
        rig.host.programs.names = {u"npm"_s};
        QCOMPARE(rig.said(u"clean preview npm"_s), u"0 正在运行，将跳过：npm 缓存"_s);
    }

    void doesNotAskInVain()
    {
        Rig rig;
        rig.services->cleaner.setAllSelected(false);
        QVERIFY(rig.said(u"clean run"_s).endsWith(u" 没有选择任何清理项"_s) && !rig.reply.isQuestion());
        rig.host.programs.names = {u"npm"_s};
        QVERIFY(rig.said(u"clean run npm"_s).endsWith(u" 所选项目的应用正在运行，没有清理"_s));
        QVERIFY(!rig.reply.isQuestion());
        rig.host.programs.names.clear();
        QVERIFY(QDir(rig.folder).removeRecursively());
        QCOMPARE(rig.said(u"clean run npm"_s), u"0 没有可清理的内容：npm 缓存"_s);
        QVERIFY(!rig.reply.isQuestion());
    }

    void asksForWhatItShows()
    {
        Rig rig;
        rig.services->cleaner.setAllSelected(false);
        rig.services->cleaner.setSelected(u"npm"_s, true);
        writeFile(rig.folder + u"/two\nlines\x1b[2J"_s);
        QVERIFY(rig.said(u"clean run"_s).contains(u"/_cacache/two lines [2J"_s));
        QVERIFY(rig.reply.isQuestion());
        QCOMPARE(rig.reply.data[u"arguments"_s].toArray(), QJsonArray{u"npm"_s});
    }

    void refuses()
    {
        Rig rig;
        QCOMPARE(rig.said(u"clean run nothing --yes"_s), u"1 没有这个清理项：nothing（见 clean list）"_s);
        Rig fresh(false);
        QCOMPARE(fresh.said(u"clean run npm --yes"_s), u"1 需要先在 Velbrix 窗口中确认：系统清理隐私确认"_s);
        QVERIFY(!rig.isEmpty() && !fresh.isEmpty());
    }

    void cleansWhatIsNamed()
    {
        Rig rig;
        rig.services->cleaner.setAllSelected(false);
        QVERIFY(rig.said(u"clean run npm --yes"_s).startsWith(u"0 清理完成！处理了 2 个项目（释放约 "_s));
        QCOMPARE(rig.reply.data[u"count"_s].toInt(), 2);
        QVERIFY(rig.isEmpty());
        QVERIFY(QDir(rig.folder).exists());
        // The same again: nothing left, and an end all the same.
        rig.said(u"clean run npm --yes"_s);
        QCOMPARE(rig.reply.data[u"count"_s].toInt(), 0);
        QVERIFY(rig.services->cleaner.itemsToClean().isEmpty());
    }
};

QTEST_GUILESS_MAIN(CleanCommandsTest)
#include "CleanCommandsTest.moc"
