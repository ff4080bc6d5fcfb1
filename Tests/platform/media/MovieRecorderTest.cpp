#include "platform/linux/media/recording/MovieRecorder.h"
#include "MediaTools.h"
#include "platform/linux/media/recording/MonotonicTime.h"
#include "support/MoviePictures.h"
#include "support/Test.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <sys/resource.h>
#include <sys/types.h>

class MovieRecorderTest : public QObject {
    Q_OBJECT

private:
    static constexpr int width = 320;
    static constexpr int height = 240;
    static constexpr std::int64_t second = 1'000'000'000;

    MovieSettings settings(bool sound = false) const
    {
        return {.path = _folder.filePath(u"movie.mp4"_s),
                .width = width,
                .height = height,
                .framesPerSecond = 30,
                .videoBitRate = 4'000'000,
                .keyFrameInterval = 30,
                .systemAudio = sound,
                .microphone = sound};
    }
    // The queue is full now and then: the recorder runs behind this loop.
    static void submit(MovieRecorder &recorder, const TestPicture &picture, PixelRect changed,
                       std::int64_t tick)
    {
        QVERIFY(waitFor([&] { return recorder.submit(picture.view(), std::span(&changed, 1), tick); }));
    }

    // The process id of a player.
    static pid_t startTone(const QString &sink)
    {
        const QString player = u"ffmpeg -v quiet -re -f lavfi -i sine=440 -ac 2 -ar 48000 -af volume=4 "
                               "-device %1 -f pulse tone </dev/null >/dev/null 2>&1 & echo $!"_s;
        return shell(player.arg(sink)).toInt();
    }
    static QStringList locked(std::mutex &lock, const QStringList &list)
    {
        const std::scoped_lock guard(lock);
        return list;
    }
    // The loudest sample between two moments.
    static float loudness(const QByteArray &samples, double from, double to)
    {
        const auto *values = reinterpret_cast<const float *>(samples.constData());
        const auto last = std::min(qsizetype(to * 48000), samples.size() / 8);
        float loudest = 0;
        for (auto i = std::max(qsizetype(0), qsizetype(from * 48000)); i < last; ++i)
            loudest = std::max(loudest, std::abs(values[2 * i]));
        return loudest;
    }

    QTemporaryDir _folder;

private Q_SLOTS:
    void writesWhatWasSubmitted()
    {
        CaptureLedger ledger;
        auto recorder = MovieRecorder::create(settings(), 5, ledger, {});
        QVERIFY2(recorder, recorder ? "" : qPrintable(recorder.error().message));
        (*recorder)->begin(monotonicNow());
        TestPicture picture(width, height);
        submit(**recorder, picture, picture.all(), 2);
        for (int tick = 3; tick < 90; tick += tick == 40 ? 20 : 1) {
            picture.scroll(tick * 2);
            submit(**recorder, picture, picture.all(), tick);
        }
        const auto finished = (*recorder)->finish(120);
        QVERIFY2(finished, finished ? "" : qPrintable(finished.error().message));

        const CaptureCounters counters = ledger.counters();
        QCOMPARE(counters.writtenFrameCount, 69);
        QCOMPARE(counters.firstPTS, std::optional(2 / 30.0));
        QCOMPARE(counters.lastPTS, std::optional(89 / 30.0));

        const QString path = settings().path;
        QByteArray errors;
        pictures(path, &errors);
        QCOMPARE(errors, QByteArray());
        // The last picture came through as it was.
        const QByteArray luma =
            output(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, path, u"-vf"_s, u"extractplanes=y"_s,
                                 u"-fps_mode"_s, u"passthrough"_s, u"-f"_s, u"rawvideo"_s, u"-"_s});
        QCOMPARE(luma.size(), 70 * width * height);
        const auto *last = reinterpret_cast<const std::uint8_t *>(luma.constData()) + 69 * width * height;
        long long difference = 0;
        for (int i = 0; i < width * height; ++i)
            difference += std::abs(last[i] - picture.view().y[i]);
        QVERIFY2(difference < 8 * width * height, qPrintable(QString::number(difference)));

        const QByteArrayList times = probed(path, u"packet=pts,flags"_s, u"v"_s).split('\n');
        QCOMPARE(times.size(), 70); // the last one repeated at the end
        QCOMPARE(times[0].left(4), QByteArray("0,K_"));
        QCOMPARE(times[1].left(5), QByteArray("3000,"));
        QCOMPARE(times.last().left(7), QByteArray("119000,"));
        QCOMPARE(probed(path,
                        u"stream=duration,profile,has_b_frames,color_space,color_primaries,color_transfer"_s,
                        u"v"_s),
                 QByteArray("High,0,smpte170m,iec61966-2-1,bt709,4.000000"));
    }

    // A still screen: the file on the disk keeps up, so that a kill costs little.
    void keepsUpWhileNothingMoves()
    {
        CaptureLedger ledger;
        auto recorder = MovieRecorder::create(settings(), 5, ledger, {});
        QVERIFY(recorder);
        (*recorder)->begin(monotonicNow() - 20 * second);
        TestPicture picture(width, height);
        submit(**recorder, picture, picture.all(), 0);
        const QString copy = _folder.filePath(u"killed.mp4"_s);
        const auto killedDuration = [&] {
            writeFile(copy, readFile(settings().path));
            return probed(copy, u"format=duration"_s, u"v"_s).toDouble();
        };
        QTRY_VERIFY(killedDuration() >= 17);
        QVERIFY((*recorder)->finish(25 * 30));
        QCOMPARE(ledger.counters().writtenFrameCount, 1);
        QCOMPARE(probed(settings().path, u"format=duration"_s, u"v"_s).toDouble(), 25.0);
        QVERIFY(readFile(settings().path).size() < 150'000);
    }

    void aFullQueueTakesNothing()
    {
        CaptureLedger ledger;
        auto recorder = MovieRecorder::create(settings(), 2, ledger, {});
        QVERIFY(recorder);
        TestPicture picture(width, height);
        const PixelRect all = picture.all();
        for (int tick = 0; tick < 4; ++tick) // nobody encodes yet
            QCOMPARE((*recorder)->submit(picture.view(), std::span(&all, 1), tick), tick < 2);
        (*recorder)->begin(monotonicNow());
        submit(**recorder, picture, all, 5);
        QVERIFY((*recorder)->finish(6));
        QCOMPARE(ledger.counters().writtenFrameCount, 3);
    }

    void noPictureIsNoMovie()
    {
        CaptureLedger ledger;
        auto recorder = MovieRecorder::create(settings(), 5, ledger, {});
        QVERIFY(recorder);
        (*recorder)->begin(monotonicNow());
        const auto finished = (*recorder)->finish(30);
        QVERIFY(!finished);
        QCOMPARE(finished.error().message, u"没有写入任何画面"_s);
    }

    void droppedEarlyItIsAMovieAllTheSame()
    {
        CaptureLedger ledger;
        {
            auto recorder = MovieRecorder::create(settings(), 5, ledger, {});
            QVERIFY(recorder);
            (*recorder)->begin(monotonicNow());
            TestPicture picture(width, height);
            for (int tick = 0; tick < 40; ++tick)
                submit(**recorder, picture, picture.all(), tick);
        }
        QCOMPARE(probed(settings().path, u"packet=pts"_s, u"v"_s).count('\n'), 39);
    }

    void aFullDiskEndsItOnce()
    {
        CaptureLedger ledger;
        std::atomic<int> failures = 0;
        auto recorder = MovieRecorder::create(settings(), 5, ledger,
                                              {.failed = [&](Failure) { ++failures; }, .warning = {}});
        QVERIFY(recorder);
        rlimit before = {};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit tight = before;
        tight.rlim_cur = 1'500'000;
        ::setrlimit(RLIMIT_FSIZE, &tight);
        (*recorder)->begin(monotonicNow());
        TestPicture picture(width, height);
        for (int tick = 0; tick < 300; ++tick) {
            picture.scroll(tick * 97); // too far for the encoder to follow
            submit(**recorder, picture, picture.all(), tick);
        }
        const auto finished = (*recorder)->finish(300);
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
        QCOMPARE(failures.load(), 1);
        QVERIFY(finished);
        const double duration = probed(settings().path, u"format=duration"_s, u"v"_s).toDouble();
        QVERIFY2(duration > 1 && duration < 10, qPrintable(QString::number(duration)));
    }

    // What the speaker plays is in the movie, at its place; after the default
    // speaker changed, what the other one plays; the microphone is never mixed in.
    void recordsSoundFromTheDefaultSpeaker()
    {
        CaptureLedger ledger;
        const std::int64_t zero = monotonicNow();
        QStringList warnings;
        std::mutex lock;
        auto recorder =
            MovieRecorder::create(settings(true), 5, ledger, {.failed = {}, .warning = [&](QString text) {
                                                                  const std::scoped_lock guard(lock);
                                                                  warnings.append(text);
                                                              }});
        QVERIFY(recorder);
        QCOMPARE((*recorder)->tracks(), (MovieTracks{true, true}));
        (*recorder)->useSystemAudio();
        (*recorder)->useMicrophone(u"microphone"_s);
        (*recorder)->begin(zero);
        TestPicture picture(width, height);
        submit(**recorder, picture, picture.all(), 0);

        pid_t tone = startTone(u"speaker"_s);
        QVERIFY(tone > 0);
        const auto systemCount = [&] { return ledger.counters().audioSampleCount; };
        QTRY_VERIFY_WITH_TIMEOUT(systemCount() > 150 && ledger.counters().micSampleCount > 50, 10000);
        output(u"pactl"_s, {u"load-module"_s, u"module-null-sink"_s, u"sink_name=other"_s});
        output(u"pactl"_s, {u"set-default-sink"_s, u"other"_s});
        ::kill(tone, SIGTERM);
        const std::int64_t switched = monotonicNow();
        tone = startTone(u"other"_s);
        QVERIFY(tone > 0);
        const int before = systemCount();
        QTRY_VERIFY_WITH_TIMEOUT(systemCount() > before + 150, 10000);
        // The speaker goes away: silence, and on with the next default one.
        const std::int64_t lost = monotonicNow();
        output(u"pactl"_s, {u"unload-module"_s, u"module-null-sink"_s});
        QTRY_VERIFY_WITH_TIMEOUT(locked(lock, warnings).contains(u"系统声音暂时无法录制，将以静音代替"_s),
                                 5000);
        ::kill(tone, SIGTERM);
        const std::int64_t end = monotonicNow();
        const std::int64_t lastTick = (end - zero) * 30 / second;
        QVERIFY((*recorder)->finish(lastTick));

        const QString path = settings().path;
        QCOMPARE(
            probed(path, u"stream=codec_name,sample_rate,channels,bit_rate"_s, u"a"_s).count("aac,48000,2,"),
            2);
        const QByteArray system = sound(path, u"a:0"_s);
        const QByteArray microphone = sound(path, u"a:1"_s);
        const double seconds = static_cast<double>(end - zero) / 1e9;
        QVERIFY(qAbs(double(system.size()) / 8 / 48000 - seconds) < 0.25);
        const double switchedAt = static_cast<double>(switched - zero) / 1e9;
        const double lostAt = static_cast<double>(lost - zero) / 1e9;
        QVERIFY(loudness(system, switchedAt - 1.5, switchedAt - 0.5) > 0.1);
        QVERIFY(loudness(system, lostAt - 1.5, lostAt - 0.5) > 0.1);
        QVERIFY(loudness(microphone, 0, seconds) < 0.001);
    }
};

QTEST_GUILESS_MAIN(MovieRecorderTest)
#include "MovieRecorderTest.moc"
