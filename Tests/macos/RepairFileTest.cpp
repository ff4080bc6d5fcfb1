#include "platform/macos/media/RepairFile.h"
#include "support/Test.h"

#include <limits>

namespace {

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class RepairFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void worksOnAHiddenFileBesideTheMovie()
    {
        const QString path = u"/录像/录制_20260101_120000.mp4"_s;
        const QFileInfo first(repairPath(path));
        QCOMPARE(first.path(), u"/录像"_s);
        QCOMPARE(first.suffix(), u"mp4"_s);
        QVERIFY(first.fileName().startsWith(u".录制_20260101_120000."_s));
        QVERIFY(first.filePath() != repairPath(path));
    }

    void replacesInOneStep()
    {
        const QTemporaryDir folder;
        const QString movie = folder.filePath(u"a.mp4"_s);
        const QString repaired = repairPath(movie);
        write(movie, "broken");
        write(repaired, "whole");
        QVERIFY(replaceFile(movie, repaired));
        QCOMPARE(read(movie), "whole");
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void leavesTheMovieAloneOnFailure()
    {
        const QTemporaryDir folder;
        // A folder cannot be replaced by a file.
        const QString movie = folder.filePath(u"a.mp4"_s);
        QVERIFY(QDir().mkpath(movie + u"/inner"_s));
        const QString repaired = repairPath(movie);
        write(repaired, "whole");
        const Result<void> replaced = replaceFile(movie, repaired);
        QVERIFY(!replaced);
        QVERIFY(replaced.error().message.startsWith(u"无法替换原文件："_s));
        QVERIFY(QFileInfo(movie).isDir());
        QVERIFY(!QFile::exists(repaired));
    }

    void knowsNoEndlessLengths()
    {
        QCOMPARE(finiteSeconds(1.5), 1.5);
        QCOMPARE(finiteSeconds(std::numeric_limits<double>::infinity()), 0.0);
        QCOMPARE(finiteSeconds(std::numeric_limits<double>::quiet_NaN()), 0.0);
    }
};

QTEST_GUILESS_MAIN(RepairFileTest)
#include "RepairFileTest.moc"
