#include "LiveMovie.h"
#include "MediaTools.h"
#include "platform/linux/media/mp4/LinuxMovieFiles.h"
#include "support/FakeMovieFiles.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QCoroTask>

class MovieFilesTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    LinuxMovieFiles _files;
    QByteArray _live;

    QString path(const QString &name) const { return _folder.filePath(name); }
    Result<MovieFacts> inspect(const QString &file) { return QCoro::waitFor(_files.inspect(file)); }

private Q_SLOTS:
    void initTestCase()
    {
        LiveMovie movie(path(u"movie.mp4"_s));
        movie.record(3);
        _live = readFile(path(u"movie.mp4"_s));
        QVERIFY(movie.finish());
    }

    void repairsAKilledRecording_data()
    {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("fake") << false;
        QTest::newRow("libav") << true;
    }
    void repairsAKilledRecording()
    {
        QFETCH(bool, isReal);
        VirtualClock clock;
        FakeMovieFiles fake(clock);
        MovieFiles &files = isReal ? static_cast<MovieFiles &>(_files) : fake;
        const QString file = path(u"killed.mp4"_s);
        QVERIFY(!QCoro::waitFor(files.inspect(path(u"missing.mp4"_s))));
        QVERIFY(!QCoro::waitFor(files.repair(path(u"missing.mp4"_s))));
        writeFile(file, {});
        QCOMPARE(QCoro::waitFor(files.inspect(file)), Result<MovieFacts>(MovieFacts()));
        writeFile(file, _live.chopped(1000));
        QVERIFY(QCoro::waitFor(files.repair(file)));
        const auto facts = QCoro::waitFor(files.inspect(file));
        QVERIFY(facts && facts->isPlayable && facts->hasVideo);
        QCOMPARE(facts->audioTracks, 1);
        QVERIFY(facts->duration >= 1.0);
    }

    void knowsAMovie()
    {
        const auto facts = inspect(path(u"movie.mp4"_s));
        QVERIFY(facts && facts->isPlayable && facts->hasVideo);
        QCOMPARE(facts->audioTracks, 1);
        QVERIFY(qAbs(facts->duration - 3.0) < 0.05);
    }

    void knowsSoundAlone()
    {
        output(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, path(u"movie.mp4"_s), u"-vn"_s, u"-c"_s, u"copy"_s,
                             path(u"sound.m4a"_s)});
        const auto facts = inspect(path(u"sound.m4a"_s));
        QVERIFY(facts && facts->isPlayable && !facts->hasVideo);
        QCOMPARE(facts->audioTracks, 1);
    }

    void whatIsNoMovieIsNotPlayable_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("noise") << QByteArray(20000, 'x');
        QTest::newRow("start only") << _live.first(_live.indexOf("moof") - 4);
        QByteArray garbled = readFile(path(u"movie.mp4"_s));
        const qsizetype media = _live.indexOf("moof") - 4;
        const qsizetype header = garbled.lastIndexOf("moov") - 4;
        garbled.replace(media, header - media, QByteArray(header - media, '\xFF'));
        QTest::newRow("media overwritten") << garbled;
    }
    void whatIsNoMovieIsNotPlayable()
    {
        QFETCH(QByteArray, bytes);
        writeFile(path(u"broken.mp4"_s), bytes);
        const auto facts = inspect(path(u"broken.mp4"_s));
        QVERIFY(facts);
        QVERIFY(!facts->isPlayable);
    }
};

QTEST_GUILESS_MAIN(MovieFilesTest)
#include "MovieFilesTest.moc"
