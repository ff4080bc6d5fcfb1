#include "MediaTools.h"
#include "foundation/SystemClock.h"
#include "platform/linux/media/libav/LibAvMediaProbe.h"
#include "support/FakeMedia.h"
#include "support/Fuzz.h"
#include "support/MountedFolder.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isNear(QColor colour, QColor wanted)
{
    return std::abs(colour.red() - wanted.red()) < 24 && std::abs(colour.green() - wanted.green()) < 24 &&
           std::abs(colour.blue() - wanted.blue()) < 24;
}

} // namespace

class MediaProbeTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    SystemClock _clock;
    LibAvMediaProbe _probe{_clock};

    QString path(const QString &name) const { return _folder.filePath(name); }
    void make(const QString &arguments) const { ffmpeg(_folder.path(), arguments); }
    Result<VideoFacts> facts(const QString &name) { return QCoro::waitFor(_probe.facts(path(name))); }
    Result<QImage> frame(const QString &name, double seconds, QSize bound = {4096, 4096})
    {
        return QCoro::waitFor(_probe.frame(path(name), seconds, bound, Cancellation()));
    }
    QString problem(const QString &name) { return errorText(facts(name)); }

private Q_SLOTS:
    void initTestCase()
    {
        // Red for a second, green for a second, blue for a second; 25 pictures a second.
        make(u"-f lavfi -i "
             u"'color=red:s=320x180:d=1[a];color=lime:s=320x180:d=1[b];color=blue:s=320x180:d=1[c];"
             "[a][b][c]concat=n=3' -pix_fmt yuv420p -g 100 -bf 2 colours.mp4"_s);
    }

    void answersLikeItsFake_data() { fakeAndReal(); }
    void answersLikeItsFake()
    {
        QFETCH(bool, isReal);
        VirtualClock clock;
        FakeMediaProbe fake(clock);
        const QString video = path(u"colours.mp4"_s);
        fake.factsOf.insert(video, VideoFacts{true, {320, 180}, 25, 3});
        fake.factsOf.insert(path(u"missing.mp4"_s), failure(u"文件不存在"_s));
        fake.frameAnswer = QImage(320, 180, QImage::Format_RGB32);
        fake.frameAnswer->fill(Qt::red);
        MediaProbe &probe = isReal ? static_cast<MediaProbe &>(_probe) : fake;

        QCOMPARE(QCoro::waitFor(probe.facts(video)), Result<VideoFacts>(VideoFacts{true, {320, 180}, 25, 3}));
        QCOMPARE(errorText(QCoro::waitFor(probe.facts(path(u"missing.mp4"_s)))), u"文件不存在"_s);
        QCOMPARE(QCoro::waitFor(probe.isFile(video)), Result<bool>(true));
        for (const QString &other : {path(u"missing.mp4"_s), _folder.path()})
            QCOMPARE(QCoro::waitFor(probe.isFile(other)), Result<bool>(false));
        const auto small = QCoro::waitFor(probe.frame(video, 0, {100, 100}, Cancellation()));
        QVERIFY(small);
        QCOMPARE(small->size(), QSize(100, 56));
        QVERIFY(isNear(small->pixelColor(50, 28), Qt::red));
        QCOMPARE(QCoro::waitFor(probe.frame(video, 0, {1000, 1000}, Cancellation()))->size(),
                 QSize(320, 180));
        Cancellation cancelled;
        cancelled.cancel();
        QCOMPARE(errorText(QCoro::waitFor(probe.frame(video, 0, {100, 100}, cancelled))), u"已取消"_s);
    }

    void findsThePictureAtATime()
    {
        // The last red picture is shown from 0.96 seconds on.
        const std::initializer_list<std::pair<double, QColor>> places{
            {-1, Qt::red},  {0, Qt::red},    {0.96, Qt::red}, {0.961, Qt::green},
            {1, Qt::green}, {2.5, Qt::blue}, {1e9, Qt::blue}};
        for (const auto &[seconds, colour] : places) {
            const auto picture = frame(u"colours.mp4"_s, seconds);
            QVERIFY2(picture && isNear(picture->pixelColor(160, 90), colour),
                     qPrintable(QString::number(seconds)));
        }
    }

    void readsEveryKind()
    {
        struct Kind {
            QString name, coding, source = u"color=orange:s=160x90:r=25:d=1"_s;
            QSize shown{160, 90};
        };
        for (const auto &[name, coding, source, shown] :
             {Kind{u"a.webm"_s, u"-c:v libvpx-vp9"_s}, Kind{u"a.mkv"_s, u"-c:v libx264"_s},
              Kind{u"a.avi"_s, u"-c:v mpeg4"_s}, Kind{u"a.wmv"_s, u"-c:v wmv2"_s},
              Kind{u"a.flv"_s, u"-c:v flv1"_s}, Kind{u"a.gif"_s, {}}, Kind{u"a.mov"_s, u"-c:v mjpeg"_s},
              Kind{u"film.txt"_s, u"-f matroska"_s},
              Kind{u"ten bits.mp4"_s, u"-c:v libx264 -pix_fmt yuv420p10le"_s},
              Kind{u"odd.mkv"_s,
                   u"-c:v ffv1"_s,
                   u"color=orange:s=161x91:r=25:d=1,format=yuv444p"_s,
                   {161, 91}},
              Kind{u"wide pixels.mp4"_s,
                   u"-pix_fmt yuv420p"_s,
                   u"color=orange:s=160x90:r=25:d=1,setsar=2"_s,
                   {320, 90}}}) {
            make(u"-f lavfi -i '%1' %2 '%3'"_s.arg(source, coding, name));
            const auto known = facts(name);
            const auto picture = frame(name, 0.5);
            QVERIFY2(known && picture, qPrintable(name + u": "_s + errorText(known) + errorText(picture)));
            QVERIFY(known->hasVideo);
            QCOMPARE(known->size, shown);
            QVERIFY(qAbs(known->framesPerSecond - 25) < 0.1 && qAbs(known->duration - 1) < 0.1);
            QCOMPARE(picture->size(), shown);
            QVERIFY2(isNear(picture->pixelColor(20, 20), QColor(255, 165, 0)),
                     qPrintable(picture->pixelColor(20, 20).name()));
        }
    }

    void showsARotatedFilmUpright()
    {
        make(
            u"-f lavfi -i color=red:s=160x90:d=1,drawbox=x=0:y=0:w=80:h=90:c=blue:t=fill -pix_fmt yuv420p flat.mp4"_s);
        make(u"-i flat.mp4 -c copy -metadata:s:v:0 rotate=90 turned.mp4"_s);
        make(u"-i turned.mp4 -frames:v 1 turned.png"_s);
        QCOMPARE(facts(u"turned.mp4"_s)->size, QSize(90, 160));
        const auto picture = frame(u"turned.mp4"_s, 0, {45, 80});
        QVERIFY(picture && picture->size() == QSize(45, 80));
        const QImage reference(path(u"turned.png"_s));
        for (const int y : {10, 70})
            QVERIFY(isNear(picture->pixelColor(20, y), reference.pixelColor(40, 2 * y)));
    }

    void soundAloneHasNoVideo()
    {
        make(u"-f lavfi -i sine=d=1 sound.mp4"_s);
        make(u"-f lavfi -i color=red:s=64x64 -frames:v 1 cover.png"_s);
        make(u"-i sound.mp4 -i cover.png -map 0 -map 1 -c copy -disposition:v:0 attached_pic covered.mp4"_s);
        for (const QString &name : {u"sound.mp4"_s, u"covered.mp4"_s}) {
            QCOMPARE(facts(name), Result<VideoFacts>(VideoFacts{}));
            QCOMPARE(errorText(frame(name, 0)), u"视频中没有画面轨道"_s);
        }
    }

    void saysWhatIsWrong()
    {
        writeFile(path(u"empty.mp4"_s), {});
        writeFile(path(u"text.mp4"_s), QByteArray("Dear diary, nothing moves today.\n").repeated(500));
        writeFile(path(u"playlist.mp4"_s), "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\n" +
                                               path(u"colours.mp4"_s).toUtf8() + "\n#EXT-X-ENDLIST\n");
        writeFile(path(u"script.mp4"_s), "ffconcat version 1.0\nfile colours.mp4\n");
        writeFile(path(u"cut off.mp4"_s), readFile(path(u"colours.mp4"_s)).first(600));
        make(u"-f lavfi -i color=red:s=64x64 -frames:v 1 still.png"_s);
        writeFile(path(u"still.mp4"_s), readFile(path(u"still.png"_s)));
        QDir(_folder.path()).mkdir(u"folder.mp4"_s);
        ::mkfifo(QFile::encodeName(path(u"pipe.mp4"_s)).constData(), 0600);
        QFile::link(path(u"nowhere.mp4"_s), path(u"dangling.mp4"_s));
        make(u"-f lavfi -i color=red:s=64x64:d=1 moving.webp"_s);
        make(u"-f lavfi -i color=red:s=64x64 -frames:v 1 still.gif"_s);
        QMap<QString, QString> words{{u"moving.webp"_s, u"不能播放 WebP 图片，请先转换成 MP4 或 GIF"_s},
                                     {u"still.gif"_s, u"这张 GIF 只有一幅画面，不会动"_s},
                                     {u"missing.mp4"_s, u"文件不存在"_s},
                                     {u"dangling.mp4"_s, u"文件不存在"_s},
                                     {u"folder.mp4"_s, u"这是文件夹，不是视频文件"_s},
                                     {u"empty.mp4"_s, u"文件是空的"_s},
                                     {u"\uFFFD.mp4"_s, u"文件名不是有效的 UTF-8 文字，请先给它改名"_s}};
        for (const char *name :
             {"pipe.mp4", "text.mp4", "playlist.mp4", "script.mp4", "cut off.mp4", "still.mp4"})
            words.insert(QString::fromLatin1(name), u"不是可播放的视频文件"_s);
        for (const auto &[name, message] : words.toStdMap()) {
            QVERIFY2(problem(name) == message, qPrintable(name + u": "_s + problem(name)));
            QCOMPARE(errorText(frame(name, 0)), message);
        }
    }

    void saysThatItMayNotRead()
    {
        if (::geteuid() == 0)
            QSKIP("root may read everything");
        QFile::copy(path(u"colours.mp4"_s), path(u"secret.mp4"_s));
        QFile::setPermissions(path(u"secret.mp4"_s), {});
        QCOMPARE(problem(u"secret.mp4"_s), u"没有读取权限"_s);
    }

    void asksNoMemoryForAbsurdSizes()
    {
        make(u"-f lavfi -i color=red:s=300x300:d=1 -c:v ffv1 square.mkv"_s);
        QByteArray bytes = readFile(path(u"square.mkv"_s));
        // Element, length and value of Matroska's width and height.
        for (const char *element : {"\xB0\x82\x01\x2C", "\xBA\x82\x01\x2C"}) {
            const qsizetype at = bytes.indexOf(QByteArray(element, 4));
            QVERIFY(at > 0);
            bytes.replace(at + 2, 2, "\xFF\xFF");
        }
        writeFile(path(u"absurd.mkv"_s), bytes);
        QCOMPARE(problem(u"absurd.mkv"_s), u"不是可播放的视频文件"_s);
        QVERIFY(!frame(u"absurd.mkv"_s, 0));
    }

    void aCancelledSearchEndsSoon()
    {
        make(
            u"-f lavfi -i testsrc2=s=1280x720:r=60:d=20 -c:v libx264 -preset ultrafast -g 5000 -pix_fmt yuv420p long.mp4"_s);
        Cancellation cancellation;
        std::optional<Result<QImage>> answer;
        _probe.frame(path(u"long.mp4"_s), 19.9, {320, 180}, cancellation).then([&](Result<QImage> picture) {
            answer = std::move(picture);
        });
        cancellation.cancel();
        QTRY_VERIFY(answer.has_value());
        QCOMPARE(errorText(*answer), u"已取消"_s);
    }

    void damagedFilesAreAtMostFailures()
    {
        Fuzz fuzz{{}, {}, 300};
        for (const QString &name : {u"colours.mp4"_s, u"a.webm"_s, u"a.avi"_s, u"a.wmv"_s, u"a.flv"_s}) {
            fuzz.samples.append(readFile(path(name)));
            QVERIFY(fuzz.samples.last().size() > 500);
        }
        int answered = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            writeFile(path(u"damaged.mp4"_s), bytes);
            const auto known = facts(u"damaged.mp4"_s);
            const auto picture = frame(u"damaged.mp4"_s, 0.4, {64, 64});
            answered += picture ? 1 : 0;
            return (known || !known.error().message.isEmpty()) &&
                   (!picture || (!picture->isNull() && picture->width() <= 64));
        }));
        QVERIFY2(answered > 50, qPrintable(QString::number(answered)));
    }

    void aDiskThatDoesNotAnswerHoldsUpNoOther()
    {
        const MountedFolder disk(u"hanging"_s);
        if (!disk.isMounted())
            QSKIP("no FUSE here");
        const QString far = disk.path() + u"/far.mp4"_s;
        QVERIFY(QFile::copy(path(u"colours.mp4"_s), far));
        disk.setHanging(true);
        VirtualClock clock;
        LibAvMediaProbe probe(clock);
        QStringList told;
        const auto tell = [&told](const auto &answer) { told << errorText(answer); };
        for (int i = 0; i < 3; ++i) {
            probe.facts(far).then([&](Result<VideoFacts> answer) { tell(answer); });
            probe.frame(far, 0, {64, 64}, {}).then([&](Result<QImage> answer) { tell(answer); });
            probe.isFile(far).then([&](Result<bool> answer) { tell(answer); });
        }
        QTRY_COMPARE((clock.advance(5s), told), QStringList(9, u"存放它的磁盘没有回应"_s));
        const QString near = path(u"colours.mp4"_s);
        QVERIFY(QCoro::waitFor(probe.facts(near)));
        QVERIFY(QCoro::waitFor(probe.frame(near, 0, {64, 64}, {})));
        QCOMPARE(QCoro::waitFor(probe.isFile(near)), Result<bool>(true));
    }

    void whatIsStillAskedEndsWithTheProbe()
    {
        auto probe = std::make_unique<LibAvMediaProbe>(_clock);
        int failures = 0;
        for (int i = 0; i < 6; ++i) {
            probe->frame(path(u"long.mp4"_s), 19.9, {320, 180}, Cancellation())
                .then([&](Result<QImage> picture) { failures += picture ? 0 : 1; });
        }
        probe.reset();
        QTRY_COMPARE(failures, 6);
    }
};

QTEST_GUILESS_MAIN(MediaProbeTest)
#include "MediaProbeTest.moc"
