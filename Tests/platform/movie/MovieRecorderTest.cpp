#include "platform/linux/movie/MovieRecorder.h"
#include "MediaTools.h"
#include "platform/linux/movie/MonotonicTime.h"
#include "support/MoviePictures.h"

#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace velbrix;
using namespace velbrix::test;

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
        QVERIFY(QTest::qWaitFor(
            [&] { return recorder.submit(picture.view(), std::span(&changed, 1), tick); }));
    }

    QTemporaryDir _folder;

private Q_SLOTS:
    void writesWhatWasSubmitted()
    {
        CaptureLedger ledger;
        auto recorder = MovieRecorder::create(settings(), 5, ledger, {});
        QVERIFY2(recorder, recorder ? "" : qPrintable(recorder.error().message));
        (*recorder)->begin(monotonicNanoseconds());
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
        decoded(path, u"0:v"_s, &errors);
        QCOMPARE(errors, QByteArray());
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
};

QTEST_GUILESS_MAIN(MovieRecorderTest)
#include "MovieRecorderTest.moc"
