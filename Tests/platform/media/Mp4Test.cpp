#include "MediaTools.h"
#include "platform/linux/media/mp4/LinuxMovieFiles.h"
#include "platform/linux/media/mp4/Mp4Repair.h"
#include "platform/linux/media/mp4/Mp4Writer.h"
#include "platform/linux/media/recording/H264Encoder.h"
#include "platform/linux/media/sound/AacEncoder.h"
#include "support/FakeMedia.h"
#include "support/Fuzz.h"
#include "support/MoviePictures.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QtEndian>

namespace {

constexpr int framesPerSecond = 30;
constexpr int sampleRate = 48000;
constexpr int unitsPerTick = 1000;

// A movie with one sound track, written as a recording writes it.
class LiveMovie {
public:
    explicit LiveMovie(const QString &path)
        : _video(*H264Encoder::create({.path = path,
                                       .width = 320,
                                       .height = 240,
                                       .framesPerSecond = framesPerSecond,
                                       .videoBitRate = 2'000'000,
                                       .keyFrameInterval = framesPerSecond})),
          _sound(*AacEncoder::create(sampleRate, 2, 128000)),
          _writer(*Mp4Writer::create(path, {{.isVideo = true,
                                             .timescale = framesPerSecond * unitsPerTick,
                                             .width = 320,
                                             .height = 240,
                                             .sampleEntry = _video->sampleEntry()},
                                            {.timescale = sampleRate,
                                             .mediaStart = _sound->delay(),
                                             .sampleEntry = _sound->sampleEntry()}}))
    {
    }

    // A click every half second, and a picture every 30th or, while it is
    // still, every 6th of a second.
    void record(int seconds)
    {
        for (const int end = _tick + seconds * framesPerSecond; _tick < end; ++_tick) {
            if (_tick / framesPerSecond % 2 == 0 || _tick % 5 == 0) {
                _picture.scroll(_tick * 3);
                addPicture();
            }
            std::vector<float> sound(2 * sampleRate / framesPerSecond);
            if (_tick % (framesPerSecond / 2) == 0)
                std::fill_n(sound.begin(), 200, 0.5F);
            static_cast<void>(_sound->encode(sound, _soundSink));
        }
    }
    // The last picture for four seconds, without sound: a key picture and another, shown four times.
    void rest()
    {
        static_cast<void>(_video->encodeResting(_picture.view(), _tick, _write));
        static_cast<void>(_video->encode(_picture.view(), {}, _tick + 3, _write));
        for (int i = 0; i < 3; ++i) {
            _tick += framesPerSecond;
            if (!_writer->repeatPair(_tick * unitsPerTick, (_tick + 3) * unitsPerTick).value_or(false))
                problem = u"no pair"_s;
        }
        _tick += framesPerSecond;
    }
    // One grey picture that stays for a second, and no sound.
    void recordStillSecond()
    {
        _picture.fill(128);
        addPicture();
        _tick += framesPerSecond;
    }
    Result<void> finish()
    {
        static_cast<void>(_sound->flush(_soundSink));
        const std::int64_t ends[] = {_tick * unitsPerTick, _soundEnd};
        return _writer->finish(ends);
    }

    QString problem; // of the first picture that could not be written

private:
    void addPicture()
    {
        const PixelRect all = _picture.all();
        static_cast<void>(_video->encode(_picture.view(), std::span(&all, 1), _tick, _write));
    }

    TestPicture _picture{320, 240};
    std::unique_ptr<H264Encoder> _video;
    std::unique_ptr<AacEncoder> _sound;
    std::unique_ptr<Mp4Writer> _writer;
    std::int64_t _soundEnd = 0;
    int _tick = 0;
    const H264Encoder::Sink _write = [this](const H264Encoder::Packet &packet) {
        const auto added = _writer->add(0, packet.bytes, packet.tick * unitsPerTick, packet.isKey);
        if (problem.isEmpty())
            problem = errorText(added);
    };
    const AacEncoder::Sink _soundSink = [this](std::span<const std::uint8_t> bytes, std::int64_t time) {
        _soundEnd = time + AacEncoder::frameLength;
        static_cast<void>(_writer->add(1, bytes, time, true));
    };
};

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

class Mp4Test : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    const QString _finished = path(u"movie.mp4"_s);
    QByteArray _live; // as it is while it is recorded, or when that was killed
    qsizetype _firstFragment = 0;
    qsizetype _secondFragment = 0;

    QString path(const QString &name) const { return _folder.filePath(name); }

private Q_SLOTS:
    void initTestCase()
    {
        LiveMovie movie(_finished);
        QCOMPARE(boxNames(readFile(_finished)), (QByteArrayList{"ftyp", "free", "moov"}));
        movie.record(4);
        _live = readFile(_finished);
        QVERIFY(movie.finish());
        QCOMPARE(movie.problem, QString());
        _firstFragment = _live.indexOf("moof") - 4;
        _secondFragment = _live.indexOf("moof", _firstFragment + 8) - 4;
        QVERIFY(_firstFragment > 0 && _secondFragment > _firstFragment);
    }

    void growsByFragmentsAndEndsAsAnOrdinaryMovie()
    {
        const QByteArrayList live = boxNames(_live);
        QCOMPARE(live.mid(0, 3), (QByteArrayList{"ftyp", "free", "moov"}));
        QVERIFY(live.count("moof") >= 3);
        QCOMPARE(live.count("moof"), live.count("mdat"));
        QCOMPARE(boxNames(readFile(_finished)), (QByteArrayList{"ftyp", "mdat", "moov"}));
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
        QVERIFY(playablePictures(file) > 0);
    }

    void liveAndFinishedDecodeAlike()
    {
        const QString live = writeFile(path(u"live.mp4"_s), _live);
        const QString reference = path(u"reference.mp4"_s);
        // The same packets through another muxer.
        ffmpeg(_folder.path(), u"-i movie.mp4 -c copy reference.mp4"_s);

        QCOMPARE(playablePictures(_finished), 72);
        const QByteArray shown = pictures(_finished);
        const QByteArray livePictures = pictures(live);
        QVERIFY(livePictures.size() > shown.size() / 2);
        QVERIFY(shown.startsWith(livePictures));
        QCOMPARE(pictures(reference), shown);

        const QByteArray heard = sound(_finished);
        const QByteArray liveSound = sound(live);
        QVERIFY(liveSound.size() > heard.size() / 2);
        QVERIFY(heard.startsWith(liveSound));
        QVERIFY(sound(reference).startsWith(heard.left(4 * 48000 * 8 - 8192)));
    }

    void repeatedPicturesAreInTheFileOnce()
    {
        const QString file = path(u"rested.mp4"_s);
        LiveMovie movie(file);
        movie.record(1);
        movie.rest();
        movie.record(1);
        const QString live = writeFile(path(u"resting.mp4"_s), readFile(file));
        QVERIFY(movie.finish());
        QCOMPARE(movie.problem, QString());
        qint64 bytes = 0;
        for (const QByteArray &size : probed(file, u"packet=size"_s, u"v"_s).split('\n'))
            bytes += size.toLongLong();
        QVERIFY(bytes > QFileInfo(file).size() * 5 / 4);
        const QByteArray shown = pictures(file);
        QCOMPARE(playablePictures(file), 30 + 8 + 6);
        const QByteArray rested = shown.split('\n').at(shown.count("\n#") + 1 + 30).split(' ').last();
        QCOMPARE(shown.count(rested), 8);
        QVERIFY(shown.startsWith(pictures(live)) && pictures(live).count(rested) == 8);
        QVERIFY(repairMovie(live));
        QVERIFY(shown.startsWith(pictures(live)) && pictures(live).count(rested) == 8);
        QCOMPARE(probed(file, u"packet=flags"_s, u"v"_s).count('K'), 6);
    }

    void soundStandsWhereItWasRecorded()
    {
        const QByteArray heard = sound(_finished);
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
        const QByteArrayList packets = probed(_finished, u"packet=pts,duration"_s, u"v"_s).split('\n');
        QCOMPARE(packets.size(), 72);
        QCOMPARE(packets[1], QByteArray("1000,1000"));
        QCOMPARE(packets.last(), QByteArray("115000,5000"));
        QCOMPARE(probed(_finished, u"stream=duration_ts"_s, u"v"_s), QByteArray("120000"));
    }

    // In the second fragment, and later.
    void fullDiskLeavesAPlayableMovie()
    {
        for (const qint64 room : {300'000, 700'000}) {
            const QString file = path(u"full%1.mp4"_s.arg(room));
            LiveMovie movie(file);
            movie.record(1);
            {
                const LargestFile limit(QFileInfo(file).size() + room);
                movie.record(10);
                QVERIFY(movie.finish()); // the header still fits where the last fragment did not
            }
            QCOMPARE(movie.problem, u"录制文件已达到允许的最大大小"_s);
            QVERIFY(playablePictures(file) > 10);
        }
    }

    void saysWhyItCannotBegin()
    {
        const std::vector<TrackDescription> tracks(1);
        QCOMPARE(errorText(Mp4Writer::create(u"/dev/full"_s, tracks)),
                 u"磁盘空间不足，无法继续写入录制文件"_s);
        QCOMPARE(errorText(Mp4Writer::create(path(u"none/movie.mp4"_s), tracks)),
                 u"无法创建录制文件：No such file or directory"_s);
    }

    void repairMakesAnOrdinaryMovie()
    {
        const QString file = writeFile(path(u"whole.mp4"_s), _live);
        const QByteArray shown = pictures(file);
        const QByteArray heard = sound(file);
        QCOMPARE(errorText(repairMovie(file)), QString());
        QVERIFY(playablePictures(file) > 25);
        QCOMPARE(pictures(file), shown);
        QCOMPARE(sound(file), heard);
        const QByteArray finished = readFile(file);
        QVERIFY(!finished.contains("free"));
        QVERIFY(repairMovie(file));
        QCOMPARE(readFile(file), finished);
    }

    // Cut at every kind of place: what is complete plays, nothing else changes.
    void repairDropsWhatIsTorn()
    {
        const QString file = path(u"torn.mp4"_s);
        std::mt19937 random(7);
        for (int i = 0; i < 60; ++i) {
            const bool isInHeader = i % 3 == 0;
            const qsizetype range = isInHeader ? 600 : _live.size() - _secondFragment;
            const qsizetype cut = _secondFragment + static_cast<qsizetype>(random() % size_t(range));
            writeFile(file, _live.first(cut));
            const QString problem = errorText(repairMovie(file));
            QVERIFY2(problem.isEmpty(), qPrintable(u"%1: %2"_s.arg(cut).arg(problem)));
            QCOMPARE(readFile(file).mid(_firstFragment, cut - _firstFragment),
                     _live.mid(_firstFragment, cut - _firstFragment));
            if (i % 6 == 0)
                QVERIFY(playablePictures(file) > 15);
        }
    }

    // Power cuts while repairing: with the header half written, and with the
    // gap patched before the header reached the disk.
    void repairsAgainAfterAHalfRepair()
    {
        const QString file = writeFile(path(u"half.mp4"_s), _live);
        const QByteArray shown = pictures(file);
        QVERIFY(repairMovie(file));
        const QByteArray finished = readFile(file);
        const qsizetype gap = finished.indexOf("mdat") - 4;

        QByteArray unpatched = finished;
        unpatched.replace(gap, 16, _live.mid(gap, 16));
        for (const QByteArray &state :
             {unpatched, unpatched.chopped(100), finished.chopped(100), finished.first(_live.size())}) {
            writeFile(file, state);
            QVERIFY(repairMovie(file));
            QCOMPARE(pictures(file), shown);
        }
    }

    void repairRefuses()
    {
        const QString file = path(u"refused.mp4"_s);
        const std::initializer_list<std::pair<QByteArray, QString>> refused{
            {"", u"这不是录制的视频文件"_s},
            {"not a movie at all, but long enough for a box", u"这不是录制的视频文件"_s},
            {_live.first(_firstFragment - 10), u"录制文件的开头已损坏，无法修复"_s},
            {_live.first(_firstFragment), u"录制文件里没有可恢复的画面"_s},
            {_live.first(_secondFragment - 1), u"录制文件里没有可恢复的画面"_s}};
        for (const auto &[bytes, reason] : refused) {
            writeFile(file, bytes);
            QCOMPARE(errorText(repairMovie(file)), reason);
            QCOMPARE(readFile(file), bytes);
        }
        QVERIFY(!repairMovie(_folder.path()));
    }

    // Whatever is in the file: an answer, and nothing of the media changes.
    void repairSurvivesDamage()
    {
        const QString file = path(u"fuzzed.mp4"_s);
        // The shortest that can be repaired, and mostly its header alone.
        const QByteArray header = _live.first(_firstFragment + 1500);
        const Fuzz fuzz{{header, header, header, _live.first(_secondFragment + 8)},
                        {"moov", "trak", "moof", "traf", "trun", "mdat", "free", "stsd", "avcC"},
                        600};
        constexpr qsizetype patch = 16; // the box that hides the fragments' headers
        int repairs = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            writeFile(file, bytes);
            const bool isRepaired = repairMovie(file).has_value();
            repairs += isRepaired ? 1 : 0;
            const QByteArray after = readFile(file);
            if (after == bytes || (isRepaired && after.startsWith(bytes)))
                return true;
            const auto patched = std::ranges::mismatch(bytes, after).in1 - bytes.begin();
            return isRepaired && after.sliced(patched + patch).startsWith(bytes.sliced(patched + patch));
        }));
        QVERIFY2(repairs > 20 && repairs < fuzz.rounds, qPrintable(QString::number(repairs)));
    }

    void aKilledRecordingIsRepaired_data() { fakeAndReal(); }
    void aKilledRecordingIsRepaired()
    {
        QFETCH(bool, isReal);
        VirtualClock clock;
        FakeMovieFiles fake(clock);
        LinuxMovieFiles real;
        MovieFiles &files = isReal ? static_cast<MovieFiles &>(real) : fake;
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

    void inspectionKnowsPicturesAndSound()
    {
        ffmpeg(_folder.path(), u"-i movie.mp4 -vn -c copy sound.m4a"_s);
        QByteArray garbled = readFile(_finished);
        const qsizetype length = garbled.lastIndexOf("moov") - 4 - _firstFragment;
        garbled.replace(_firstFragment, length, QByteArray(length, '\xFF'));
        writeFile(path(u"garbled.mp4"_s), garbled);
        writeFile(path(u"header.mp4"_s), _live.first(_firstFragment));
        writeFile(path(u"text.mp4"_s), QByteArray(20000, 'x'));
        LinuxMovieFiles files;
        const auto inspect = [&](const QString &name) { return *QCoro::waitFor(files.inspect(path(name))); };
        const MovieFacts movie = inspect(u"movie.mp4"_s);
        QVERIFY(movie.isPlayable && movie.hasVideo && movie.audioTracks == 1);
        QVERIFY(qAbs(movie.duration - 4.0) < 0.05);
        const MovieFacts sound = inspect(u"sound.m4a"_s);
        QVERIFY(sound.isPlayable && !sound.hasVideo && sound.audioTracks == 1);
        for (const QString &broken : {u"text.mp4"_s, u"header.mp4"_s, u"garbled.mp4"_s})
            QVERIFY2(!inspect(broken).isPlayable, qPrintable(broken));
    }
};

QTEST_GUILESS_MAIN(Mp4Test)
#include "Mp4Test.moc"
