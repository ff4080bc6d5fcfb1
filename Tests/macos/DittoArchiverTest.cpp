#include "platform/macos/files/DittoArchiver.h"

#include "foundation/SystemClock.h"
#include "platform/macos/files/ZipExcludes.h"
#include "support/Test.h"

#include <QCoroTask>

namespace {

// Programs of the same interface, which write down where they were and what
// they were asked.
class ArchiverRig {
    QTemporaryDir _folder; // first, because the programs lie in it

public:
    ArchiverRig()
    {
        for (const QString &name : {u"source"_s, u"out"_s})
            QDir(_folder.path()).mkdir(name);
        for (const QString &name : {u"ditto"_s, u"zip"_s})
            program(name, u"exit 0"_s);
    }

    SystemClock clock;
    DittoArchiver archiver{clock, {path(u"ditto"_s), path(u"zip"_s)}};

    QString path(const QString &name) const { return _folder.filePath(name); }
    void program(const QString &name, const QString &ending) const
    {
        standIn(path(name), u"#!/bin/sh\necho \"$(basename \"$PWD\")\" %1 \"$@\" >> '%2'\n%3\n"_s
                                .arg(name, path(u"log"_s), ending)
                                .toUtf8());
    }
    // What was asked, without the folder's own path.
    QString asked() const
    {
        QFile log(path(u"log"_s));
        return log.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(log.readAll()).remove(_folder.path() + u'/').trimmed()
                   : QString();
    }
    ArchiveOutcome create(const QStringList &excludes = {})
    {
        ArchiveRequest request;
        request.source = path(u"source"_s);
        request.archive = path(u"a.zip"_s);
        request.excludes = excludes;
        return QCoro::waitFor(archiver.create(request)).value_or(ArchiveOutcome{.exitStatus = -1});
    }
    Result<void> extract()
    {
        ExtractRequest request;
        request.archive = path(u"a.zip"_s);
        request.folder = path(u"out"_s);
        return QCoro::waitFor(archiver.extract(request));
    }
};

} // namespace

class DittoArchiverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void packsWithDitto()
    {
        ArchiverRig rig;
        QCOMPARE(rig.create(), ArchiveOutcome());
        QVERIFY2(rig.asked().endsWith(u" ditto -c -k --keepParent source a.zip"_s), qPrintable(rig.asked()));
    }

    void leavesOutWithZip()
    {
        ArchiverRig rig;
        rig.program(u"zip"_s, u"cat \"${6#-x@}\" > '%1'"_s.arg(rig.path(u"patterns"_s)));
        QCOMPARE(rig.create({u"*.o"_s, u"\u00e9/"_s}), ArchiveOutcome());
        const QString folder = QFileInfo(QFileInfo(rig.path(u"source"_s)).path()).fileName();
        QVERIFY(rig.asked().startsWith(folder + u" zip -r -y -q a.zip ./source -x@/"_s));
        // Among arguments a Mac would decompose them all.
        QCOMPARE(readFile(rig.path(u"patterns"_s)), "*/*.o\n*/*.o/*\n*/\u00e9/*\n*/e\u0301/*\n");
    }

    void translatesPatterns()
    {
        QCOMPARE(zipExcludes({u"build/"_s, u"/a?/b"_s, u""_s}, u"[s]"_s),
                 (QByteArrayList{"*/build/*", "\\[s]/a?/b", "\\[s]/a?/b/*"}));
    }

    void passesExitStatusesOn()
    {
        ArchiverRig rig;
        rig.program(u"ditto"_s, u"echo 'ditto: a.zip: No space left on device' >&2; exit 7"_s);
        QCOMPARE(rig.create(),
                 (ArchiveOutcome{.exitStatus = 7, .problem = u"磁盘空间不足"_s, .isDiskFull = true}));
        rig.program(u"zip"_s, u"echo 'zip warning: could not open for reading: source/a/b' >&2; exit 18"_s);
        QCOMPARE(rig.create({u"x"_s}),
                 (ArchiveOutcome{.exitStatus = 0, .skipped = {u"a/b"_s}, .skippedCount = 1}));
        rig.program(u"zip"_s, u"echo 'zip error: disk' >&2; exit 14"_s);
        QCOMPARE(rig.create({u"x"_s}), (ArchiveOutcome{.exitStatus = 14, .problem = u"zip error: disk"_s}));
    }

    // ditto would replace it.
    void unpacksBesideWhatIsThere()
    {
        ArchiverRig rig;
        writeFile(rig.path(u"a.zip"_s), "PK\5\6" + QByteArray(18, '\0'));
        rig.program(u"ditto"_s, u"mkdir \"$4/source\""_s);
        QVERIFY(rig.extract());
        QVERIFY(rig.asked().contains(u" ditto -x -k a.zip out/.velbrix-"_s));
        QCOMPARE(rig.extract(), Result<void>(failure(u"“source”已经存在，没有替换"_s)));
        QCOMPARE(QDir(rig.path(u"out"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{u"source"_s});
    }
};

QTEST_GUILESS_MAIN(DittoArchiverTest)
#include "DittoArchiverTest.moc"
