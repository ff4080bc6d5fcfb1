#include "LiveMovie.h"
#include "MediaTools.h"
#include "platform/linux/media/mp4/LinuxMovieFiles.h"
#include "support/FakeMedia.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QCoroTask>

class MovieFilesTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    LinuxMovieFiles _files;
    QByteArray _live;

    QString path(const QString &name) const { return _folder.filePath(name); }
    MovieFacts inspect(const QString &name) { return *QCoro::waitFor(_files.inspect(path(name))); }

private Q_SLOTS:
    void initTestCase()
    {
        LiveMovie movie(path(u"movie.mp4"_s));
        movie.record(3);
        _live = readFile(path(u"movie.mp4"_s));
        QVERIFY(movie.finish());
    }

    void repairsAKilledRecording_data() { fakeAndReal(); }
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

    void knowsPicturesAndSound()
    {
        const MovieFacts movie = inspect(u"movie.mp4"_s);
        QVERIFY(movie.isPlayable && movie.hasVideo);
        QCOMPARE(movie.audioTracks, 1);
        QVERIFY(qAbs(movie.duration - 3.0) < 0.05);
        ffmpeg(_folder.path(), u"-i movie.mp4 -vn -c copy sound.m4a"_s);
        const MovieFacts sound = inspect(u"sound.m4a"_s);
        QVERIFY(sound.isPlayable && !sound.hasVideo);
        QCOMPARE(sound.audioTracks, 1);
    }

    void whatIsNoMovieIsNotPlayable()
    {
        QByteArray garbled = readFile(path(u"movie.mp4"_s));
        const qsizetype media = _live.indexOf("moof") - 4;
        const qsizetype length = garbled.lastIndexOf("moov") - 4 - media;
        garbled.replace(media, length, QByteArray(length, '\xFF'));
        for (const QByteArray &bytes : {QByteArray(20000, 'x'), _live.first(media), garbled}) {
            writeFile(path(u"broken.mp4"_s), bytes);
            QVERIFY(!inspect(u"broken.mp4"_s).isPlayable);
        }
    }
};

QTEST_GUILESS_MAIN(MovieFilesTest)
#include "MovieFilesTest.moc"
