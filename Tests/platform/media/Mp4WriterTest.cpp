#include "LiveMovie.h"
#include "MediaTools.h"
#include "support/Test.h"

#include <QtEndian>

#include <csignal>
#include <sys/resource.h>

namespace {

// The names of the boxes at the top of a file.
QByteArrayList boxNames(const QByteArray &bytes)
{
    QByteArrayList names;
    for (qsizetype at = 0; at + 8 <= bytes.size();) {
        names.append(bytes.mid(at + 4, 4));
        const quint64 size = qFromBigEndian<quint32>(bytes.constData() + at);
        at += static_cast<qsizetype>(size == 1 ? qFromBigEndian<quint64>(bytes.constData() + at + 8) : size);
    }
    return names;
}

} // namespace

class Mp4WriterTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    const QString _file = path(u"movie.mp4"_s);
    QByteArray _live; // as it is while it is recorded

    QString path(const QString &name) const { return _folder.filePath(name); }

private Q_SLOTS:
    void initTestCase()
    {
        LiveMovie movie(_file);
        QCOMPARE(boxNames(readFile(_file)), (QByteArrayList{"ftyp", "free", "moov"}));
        movie.record(4);
        _live = readFile(_file);
        QVERIFY(movie.finish());
        QVERIFY(!movie.failure);
    }

    void growsByFragmentsAndEndsAsAnOrdinaryMovie()
    {
        const QByteArrayList live = boxNames(_live);
        QCOMPARE(live.mid(0, 3), (QByteArrayList{"ftyp", "free", "moov"}));
        QVERIFY(live.count("moof") >= 3);
        QCOMPARE(live.count("moof"), live.count("mdat"));
        QCOMPARE(boxNames(readFile(_file)), (QByteArrayList{"ftyp", "mdat", "moov"}));
    }

    // Whoever judges movies takes a tiny file for a failure.
    void aShortStillMovieIsNotTiny()
    {
        const QString file = path(u"still.mp4"_s);
        LiveMovie movie(file);
        movie.recordStillSecond();
        QVERIFY(movie.finish());
        QCOMPARE(boxNames(readFile(file)), (QByteArrayList{"ftyp", "mdat", "moov", "free"}));
        QVERIFY(readFile(file).size() >= 10'001);
        QByteArray errors;
        QVERIFY(!pictures(file, &errors).isEmpty());
        QCOMPARE(errors, QByteArray());
    }

    void liveAndFinishedDecodeAlike()
    {
        const QString live = path(u"live.mp4"_s);
        const QString reference = path(u"reference.mp4"_s);
        writeFile(live, _live);
        // The same packets through another muxer.
        ffmpeg(_folder.path(), u"-i movie.mp4 -c copy reference.mp4"_s);

        QByteArray errors;
        const QByteArray shown = pictures(_file, &errors);
        QCOMPARE(errors, QByteArray());
        const QByteArray livePictures = pictures(live, &errors);
        QCOMPARE(errors, QByteArray());
        QVERIFY(livePictures.size() > shown.size() / 2);
        QVERIFY(shown.startsWith(livePictures));
        QCOMPARE(pictures(reference), shown);

        const QByteArray heard = sound(_file);
        const QByteArray liveSound = sound(live);
        QVERIFY(liveSound.size() > heard.size() / 2);
        QVERIFY(heard.startsWith(liveSound));
        QVERIFY(sound(reference).startsWith(heard.left(4 * 48000 * 8 - 8192)));
    }

    void soundStandsWhereItWasRecorded()
    {
        const QByteArray heard = sound(_file);
        const auto *samples = reinterpret_cast<const float *>(heard.constData());
        const qsizetype count = heard.size() / qsizetype{sizeof(float)} / 2;
        QVERIFY(count >= 4 * 48000 && count < 4 * 48000 + 2 * 1024);
        QList<qsizetype> clicks;
        for (qsizetype i = 0; i < count; ++i)
            if (samples[2 * i] > 0.25F && (clicks.isEmpty() || i - clicks.last() > 12000))
                clicks.append(i);
        QCOMPARE(clicks.size(), 8);
        for (qsizetype i = 0; i < clicks.size(); ++i)
            QVERIFY2(qAbs(clicks[i] - i * 24000) <= 24, qPrintable(QString::number(clicks[i])));
    }

    void lastPictureLastsUntilTheEnd()
    {
        const QByteArrayList packets = probed(_file, u"packet=pts,duration"_s, u"v"_s).split('\n');
        QCOMPARE(packets.size(), 72);
        QCOMPARE(packets[1], QByteArray("1000,1000"));
        QCOMPARE(packets.last(), QByteArray("115000,5000"));
        QCOMPARE(probed(_file, u"stream=duration_ts"_s, u"v"_s), QByteArray("120000"));
    }

    // A limit on the size of files stands for the full disk: in the second fragment, and later.
    void fullDiskLeavesAPlayableMovie_data()
    {
        QTest::addColumn<int>("limit");
        for (const int limit : {300'000, 700'000})
            QTest::addRow("%d", limit) << limit;
    }
    void fullDiskLeavesAPlayableMovie()
    {
        QFETCH(int, limit);
        const QString file = path(u"full%1.mp4"_s.arg(limit));
        LiveMovie movie(file);
        movie.record(1);
        rlimit before = {};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
        rlimit tight = before;
        tight.rlim_cur = static_cast<rlim_t>(QFileInfo(file).size() + limit);
        ::setrlimit(RLIMIT_FSIZE, &tight);
        movie.record(10);
        const auto finished = movie.finish();
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, ignored);

        QVERIFY(movie.failure);
        QCOMPARE(movie.failure->message, u"录制文件已达到允许的最大大小"_s);
        QVERIFY(finished); // the header still fits where the last fragment did not
        QByteArray errors;
        const QByteArray shown = pictures(file, &errors);
        QCOMPARE(errors, QByteArray());
        QVERIFY(shown.count('\n') > 20);
    }

    void saysWhyItCannotBegin()
    {
        const std::vector<TrackDescription> tracks(1);
        QCOMPARE(errorText(Mp4Writer::create(u"/dev/full"_s, tracks)),
                 u"磁盘空间不足，无法继续写入录制文件"_s);
        QCOMPARE(errorText(Mp4Writer::create(path(u"none/movie.mp4"_s), tracks)),
                 u"无法创建录制文件：No such file or directory"_s);
    }
};

QTEST_GUILESS_MAIN(Mp4WriterTest)
#include "Mp4WriterTest.moc"
