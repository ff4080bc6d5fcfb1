#include "platform/linux/media/recording/MovieRecorder.h"
#include "MediaTools.h"
#include "platform/linux/media/recording/MonotonicTime.h"
#include "support/MoviePictures.h"
#include "support/Test.h"

#include <atomic>
#include <cerrno>
#include <cmath>

#include <dlfcn.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>

namespace {

// What the disk answers instead of the truth.
std::atomic<int> syncError = 0;
std::atomic<bool> isNearlyFull = false;

constexpr int width = 320;
constexpr int height = 240;
constexpr std::int64_t second = 1'000'000'000;

// A recording with one picture to draw on.
struct Recording {
    explicit Recording(const MovieSettings &settings, int queue = 5, const MovieRecorder::Events &events = {})
        : recorder(*MovieRecorder::create(settings, queue, ledger, events))
    {
    }
    // The queue is full now and then: the recorder runs behind this loop.
    void submit(std::int64_t tick)
    {
        const PixelRect all = picture.all();
        QVERIFY(waitFor([&] { return recorder->submit(picture.view(), std::span(&all, 1), tick); }));
    }

    CaptureLedger ledger;
    std::unique_ptr<MovieRecorder> recorder;
    TestPicture picture{width, height};
};

} // namespace

extern "C" int fsync(int descriptor)
{
    errno = syncError;
    return syncError ? -1 : static_cast<int>(::syscall(SYS_fsync, descriptor));
}

extern "C" int statvfs(const char *path, struct statvfs *facts) noexcept
{
    const auto real = reinterpret_cast<decltype(&statvfs)>(::dlsym(RTLD_NEXT, "statvfs"));
    const int result = real(path, facts);
    if (isNearlyFull)
        facts->f_bavail = 199'000'000 / facts->f_frsize;
    return result;
}

class MovieRecorderTest : public QObject {
    Q_OBJECT

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

    // The process id of a player.
    static pid_t startTone(const QString &sink)
    {
        const QString player = u"ffmpeg -v quiet -re -f lavfi -i sine=440 -ac 2 -ar 48000 -af volume=4 "
                               "-device %1 -f pulse tone </dev/null >/dev/null 2>&1 & echo $!"_s;
        return shell(player.arg(sink)).toInt();
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

    // Of its luma, on average.
    double errorOfTheLastPicture(const TestPicture &expected) const
    {
        const QByteArray luma =
            output(u"ffmpeg -v error -i '%1' -vf extractplanes=y -fps_mode passthrough -f rawvideo -"_s.arg(
                settings().path));
        const auto last = luma.last(width * height);
        long long difference = 0;
        for (int i = 0; i < width * height; ++i)
            difference += std::abs(static_cast<std::uint8_t>(last[i]) - expected.view().y[i]);
        return double(difference) / width / height;
    }

    QTemporaryDir _folder;

private Q_SLOTS:
    void writesWhatWasSubmitted()
    {
        Recording recording(settings());
        recording.recorder->begin(monotonicNow());
        recording.submit(2);
        for (int tick = 3; tick < 90; tick += tick == 40 ? 20 : 1) {
            recording.picture.scroll(tick * 2);
            recording.submit(tick);
        }
        QCOMPARE(errorText(recording.recorder->finish(120)), QString());
        const CaptureCounters counters = recording.ledger.counters();
        QCOMPARE(counters.writtenFrameCount, 69);
        QCOMPARE(counters.firstPTS, std::optional(2 / 30.0));
        QCOMPARE(counters.lastPTS, std::optional(89 / 30.0));

        const QString path = settings().path;
        QCOMPARE(playablePictures(path), 70); // the last one repeated at the end
        QCOMPARE_LT(errorOfTheLastPicture(recording.picture), 8);

        const QByteArrayList times = probed(path, u"packet=pts,flags"_s, u"v"_s).split('\n');
        QCOMPARE(times[0].left(4), QByteArray("0,K_"));
        QCOMPARE(times[1].left(5), QByteArray("3000,"));
        QCOMPARE(times.last().left(7), QByteArray("119000,"));
        QCOMPARE(probed(path,
                        u"stream=duration,profile,has_b_frames,color_space,color_primaries,color_transfer"_s,
                        u"v"_s),
                 QByteArray("High,0,smpte170m,iec61966-2-1,bt709,4.000000"));
    }

    // A still screen: the file on the disk keeps up, so that a kill costs little, a seek finds a key picture
    // within a second, and it is drawn better than anything that moves; all that for nearly nothing.
    void keepsUpWhileNothingMoves()
    {
        MovieSettings low = settings();
        low.videoBitRate = 600'000;
        Recording recording(low);
        const std::int64_t zero = monotonicNow() - 20 * second;
        recording.recorder->begin(zero);
        recording.submit(0);
        const QString copy = _folder.filePath(u"killed.mp4"_s);
        const auto killedDuration = [&] {
            writeFile(copy, readFile(settings().path));
            return probed(copy, u"format=duration"_s, u"v"_s).toDouble();
        };
        QTRY_VERIFY(killedDuration() >= 17);
        const std::int64_t lastTick = (monotonicNow() - zero) * 30 / second;
        QVERIFY(recording.recorder->finish(lastTick));
        QCOMPARE(recording.ledger.counters().writtenFrameCount, 1);
        QCOMPARE(probed(settings().path, u"format=duration"_s, u"v"_s).toDouble(),
                 std::round(double(lastTick) / 30 * 1e6) / 1e6);
        QCOMPARE_LT(readFile(settings().path).size(), lastTick * 800); // 24 kB a second
        QCOMPARE_LT(errorOfTheLastPicture(recording.picture), 4);
        double before = 0;
        for (const QByteArray &packet :
             probed(settings().path, u"packet=pts_time,flags"_s, u"v"_s).split('\n')) {
            const double time = packet.split(',').first().toDouble();
            QVERIFY2(time - before <= 1.25, packet.constData());
            before = packet.contains('K') ? time : before;
        }
        QVERIFY(before > 19);
    }

    void aFullQueueTakesNothing()
    {
        Recording recording(settings(), 2);
        const PixelRect all = recording.picture.all();
        for (int tick = 0; tick < 4; ++tick) // nobody encodes yet
            QCOMPARE(recording.recorder->submit(recording.picture.view(), std::span(&all, 1), tick),
                     tick < 2);
        recording.recorder->begin(monotonicNow());
        recording.submit(5);
        QVERIFY(recording.recorder->finish(6));
        QCOMPARE(recording.ledger.counters().writtenFrameCount, 3);
    }

    void noPictureIsNoMovie()
    {
        Recording recording(settings());
        recording.recorder->begin(monotonicNow());
        QCOMPARE(errorText(recording.recorder->finish(30)), u"没有写入任何画面"_s);
    }

    void droppedEarlyItIsAMovieAllTheSame()
    {
        {
            Recording recording(settings());
            recording.recorder->begin(monotonicNow());
            for (int tick = 0; tick < 40; ++tick)
                recording.submit(tick);
        }
        QCOMPARE(probed(settings().path, u"packet=pts"_s, u"v"_s).count('\n'), 39);
    }

    void aFullDiskEndsItOnce()
    {
        std::atomic<int> failures = 0;
        const LargestFile limit(1'500'000);
        Recording recording(settings(), 5, {.failed = [&](Failure) { ++failures; }, .warning = {}});
        recording.recorder->begin(monotonicNow());
        for (int tick = 0; tick < 300; ++tick) {
            recording.picture.scroll(tick * 97); // too far for the encoder to follow
            recording.submit(tick);
        }
        QVERIFY(recording.recorder->finish(300));
        QCOMPARE(failures.load(), 1);
        const double duration = probed(settings().path, u"format=duration"_s, u"v"_s).toDouble();
        QVERIFY2(duration > 1 && duration < 10, qPrintable(QString::number(duration)));
    }

    void aDiskThatFailsOrIsNearlyFullEndsItOnce()
    {
        for (const int error : {EIO, 0}) {
            QStringList failures;
            std::mutex lock; // of the failures
            const auto failed = [&](const Failure &why) {
                const std::scoped_lock held(lock);
                failures << why.message;
            };
            Recording recording(settings(), 5, {.failed = failed, .warning = {}});
            recording.recorder->begin(monotonicNow());
            recording.submit(0);
            syncError = error;
            isNearlyFull = error == 0;
            const auto hasFailed = [&] {
                const std::scoped_lock held(lock);
                return !failures.isEmpty();
            };
            QTRY_VERIFY(hasFailed());
            syncError = 0;
            isNearlyFull = false;
            // What there is is a movie, and the loss has been told already.
            QVERIFY(recording.recorder->finish(30));
            QCOMPARE(failures, QStringList{error ? u"写入录制文件失败：Input/output error"_s
                                                 : u"磁盘空间只剩 199 MB，为免占满磁盘已停止录制"_s});
            QVERIFY(playablePictures(settings().path) > 0);
        }
    }

    // What the default speaker plays is in the movie, silence when it goes away; the microphone is never
    // mixed in.
    void recordsSoundFromTheDefaultSpeaker()
    {
        const std::int64_t zero = monotonicNow();
        std::atomic<bool> isTold = false;
        Recording recording(settings(true), 5, {.failed = {}, .warning = [&](const QString &text) {
                                                    if (text == u"系统声音暂时无法录制，将以静音代替")
                                                        isTold = true;
                                                }});
        QCOMPARE(recording.recorder->tracks(), (MovieTracks{true, true}));
        recording.recorder->useSystemAudio();
        recording.recorder->useMicrophone(u"microphone"_s);
        recording.recorder->begin(zero);
        recording.submit(0);

        shell(u"pactl load-module module-null-sink sink_name=other; pactl set-default-sink other"_s);
        const pid_t tone = startTone(u"other"_s);
        QVERIFY(tone > 0);
        QTRY_VERIFY(recording.ledger.counters().audioSampleCount > 150 &&
                    recording.ledger.counters().micSampleCount > 50);
        const std::int64_t lost = monotonicNow();
        shell(u"pactl unload-module module-null-sink"_s);
        QTRY_VERIFY(isTold);
        ::kill(tone, SIGTERM);
        const std::int64_t end = monotonicNow();
        const std::int64_t lastTick = (end - zero) * 30 / second;
        QVERIFY(recording.recorder->finish(lastTick));

        const QString path = settings().path;
        QCOMPARE(
            probed(path, u"stream=codec_name,sample_rate,channels,bit_rate"_s, u"a"_s).count("aac,48000,2,"),
            2);
        const QByteArray system = sound(path, u"a:0"_s);
        const QByteArray microphone = sound(path, u"a:1"_s);
        const double seconds = static_cast<double>(end - zero) / 1e9;
        QVERIFY(qAbs(double(system.size()) / 8 / 48000 - seconds) < 0.25);
        const double lostAt = static_cast<double>(lost - zero) / 1e9;
        QVERIFY(loudness(system, lostAt - 1.5, lostAt - 0.5) > 0.1);
        QVERIFY(loudness(microphone, 0, seconds) < 0.001);
    }
};

QTEST_GUILESS_MAIN(MovieRecorderTest)
#include "MovieRecorderTest.moc"
