#include "support/FakePlatform.h"

#include <QJsonArray>

namespace {

const QString key = u"Velbrix_ScreenRecord_unfinishedFiles"_s;

} // namespace

class UnfinishedRecordingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { _movie = writeFile(_folder.filePath(u"录制.mp4"_s)); }

    void remembersOnDiskAtOnce()
    {
        ServicesRig rig;
        UnfinishedRecordings &unfinished = rig.make().recorder.unfinished();
        const QString other = writeFile(_folder.filePath(u"other.mp4"_s));
        for (const QString &path : {_movie, other})
            unfinished.begin(path);
        QCOMPARE(rig.host.settings.stored.value(key).toArray(), (QJsonArray{_movie, other}));
        QVERIFY(unfinished.leftovers().isEmpty());
        unfinished.end(_movie);
        unfinished.findLeftovers();
        QTRY_COMPARE(unfinished.leftovers(), QStringList{other});
        unfinished.begin(_movie);
        unfinished.dismiss(other);
        QVERIFY(unfinished.leftovers().isEmpty() && QFile::exists(other));
        QCOMPARE(rig.services->settings.json(key), std::optional(QJsonValue(QJsonArray{_movie})));
        unfinished.end(_movie);
        QVERIFY(!rig.services->settings.contains(key));
    }

    void findsWhatACrashLeftAndRepairsIt()
    {
        ServicesRig rig;
        const QString away = u"/nonexistent/disk/录制.mp4"_s;
        rig.host.settings.stored = {
            {key, QJsonArray{_movie, _movie, _folder.filePath(u"gone.mp4"_s), 7, away}}};
        rig.host.movieFiles.repairAnswer = failure(u"不是电影"_s);
        UnfinishedRecordings &unfinished = rig.make().recorder.unfinished();
        const RecorderLog &log = rig.services->recorder.log();
        QTRY_COMPARE(unfinished.leftovers(), QStringList{_movie});
        QCOMPARE(rig.services->settings.json(key), std::optional(QJsonValue(QJsonArray{_movie, away})));
        QCOMPARE(log.logLines().last(), u"发现未正常结束的录制：录制.mp4"_s);
        unfinished.repair(_folder.filePath(u"other.mp4"_s)); // nobody's leftover
        unfinished.repair(_movie);
        settle();
        QCOMPARE(rig.host.movieFiles.calls, QStringList{u"repair "_s + _movie});
        QCOMPARE(unfinished.leftovers(), QStringList{_movie});
        QCOMPARE(log.logLines().last(), u"❌ 修复失败，文件保持原样：录制.mp4 不是电影"_s);
        rig.host.movieFiles.repairAnswer = {};
        unfinished.repair(_movie);
        settle();
        QVERIFY(unfinished.leftovers().isEmpty());
        QCOMPARE(log.logLines().last(), u"✅ 已修复 录制.mp4"_s);
    }

private:
    QTemporaryDir _folder;
    QString _movie;
};

QTEST_GUILESS_MAIN(UnfinishedRecordingsTest)
#include "UnfinishedRecordingsTest.moc"
