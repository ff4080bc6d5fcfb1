#include "support/FakePlatform.h"

#include <QCoreApplication>
#include <QJsonArray>

namespace {

using Kind = RecordingOutcome::Kind;

CapturableWindow window(quint32 id, const QString &title, qint64 pid = 1)
{
    return {id, title, u"App"_s, {}, pid, {0, 0, 801, 601}};
}

// A recorder whose host writes 20,000 bytes for each movie.
struct Rig : ServicesRig {
    Rig()
    {
        state->onOpen = [](const QString &movie) { writeFile(movie, QByteArray(20'000, 'x')); };
        host.screenCapture.contentAnswer->windows = {
            window(7, u"Editor"_s), window(8, u"Mine"_s, QCoreApplication::applicationPid()),
            window(9, u"Wallpaper"_s, QCoreApplication::applicationPid())};
        host.screenCapture.contentAnswer->windows.last().isDesktop = true;
        preferences.setOutputDir(folder.path());
        preferences.setRecordSystemAudio(false);
    }

    QStringList lines() const { return recorder.log().logLines(); }
    QStringList linesSinceItRuns() const
    {
        return lines().mid(lines().lastIndexOf(u"✅ startCapture 成功"_s) + 1);
    }
    void start(int frames = 0)
    {
        state->calls.clear();
        recorder.start();
        settle();
        for (int i = 0; i < frames; ++i)
            host.screenCapture.session()->ledger().noteWrittenFrame(i / 60.0);
    }
    void stop()
    {
        recorder.stop();
        settle();
    }

    QTemporaryDir folder;
    std::shared_ptr<FakeCaptureState> state = host.screenCapture.nextSession;
    ScreenRecorderController &recorder = make().recorder;
    RecorderPreferences &preferences = recorder.preferences();
    RecordingSession &session = recorder.session();
    const QString path = folder.filePath(u"录制_20260301_090000.mp4"_s);
};

} // namespace

class RecordingSessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sixStepsToAMovieOfTheScreen()
    {
        Rig rig;
        rig.preferences.setRecordSystemAudio(true);
        rig.preferences.setRecordMicrophone(true);
        rig.preferences.setSelectedMicrophoneID(u"mic"_s);
        rig.preferences.setIgnoreSelfWindows(true);
        rig.start();
        QVERIFY(rig.recorder.isRecording());
        QCOMPARE(
            rig.lines(),
            (QStringList{u"已恢复上次录制配置"_s, u"====== 开始录制 ======"_s,
                         u"模式=全屏录制 fps=60 画质=原画 忽略本应用窗口=true 系统音频=true 麦克风=true"_s,
                         u"✅ 屏幕权限已授予（CGPreflight=true）"_s, u"扬声器 1 个 / 麦克风 1 个"_s,
                         u"[1/6] 获取可共享内容…"_s, u"[1/6] ✅ 显示器:1 窗口:3"_s,
                         u"[2/6] ✅ 全屏 displayID=1 排除本应用窗口=1"_s,
                         u"[3/6] 捕获像素 1920x1080 原画 60fps 系统音频=true 麦克风=true"_s,
                         u"[4/6] ✅ 捕获流已创建 queueDepth=5"_s,
                         u"写入器就绪 1920x1080 sysAudio=true mic=true"_s,
                         u"[5/6] ✅ 模式=手动 AVAssetWriter"_s, u"已挂载系统音频 output"_s,
                         u"已挂载麦克风 output"_s, u"[6/6] startCapture…"_s, u"✅ startCapture 成功"_s}));
        QCOMPARE(rig.state->calls,
                 (QStringList{u"openWriter "_s + rig.path, u"addOutput screen"_s, u"addOutput systemAudio"_s,
                              u"addOutput microphone"_s, u"startCapture"_s}));
        QCOMPARE(rig.state->filter, (CaptureFilter{{}, 1, {8}, true}));
        const StreamConfiguration stream{.width = 1920,
                                         .height = 1080,
                                         .capturesAudio = true,
                                         .excludesCurrentProcessAudio = true,
                                         .capturesMicrophone = true,
                                         .microphoneDeviceId = u"mic"_s};
        QCOMPARE(rig.state->configuration, stream);
        const MovieSettings movie{.path = rig.path,
                                  .width = 1920,
                                  .height = 1080,
                                  .videoBitRate = 10'368'000,
                                  .systemAudio = true,
                                  .microphone = true};
        QCOMPARE(*rig.state->movie, movie);
        QCOMPARE(rig.session.outputURL(), std::optional(rig.path));
    }

    void theWallpaperIsNotHeardInTheMovie()
    {
        struct {
            bool sound, ignoresOwn, canLeaveOut, isSilent;
        } const rows[] = {{true, true, false, true},
                          {true, true, true, false},
                          {true, false, false, false},
                          {false, true, false, false}};
        for (const auto &row : rows) {
            Rig rig;
            const QString video = rig.video(u"a.mp4"_s);
            rig.services->wallpaper.playVideo(video);
            QCOMPARE(rig.surface()->volume, 0.3);
            rig.preferences.setRecordSystemAudio(row.sound);
            rig.preferences.setIgnoreSelfWindows(row.ignoresOwn);
            rig.host.screenCapture.featuresAnswer.ownSoundExclusion = row.canLeaveOut;
            rig.start();
            QVERIFY(rig.recorder.isRecording());
            QCOMPARE(rig.surface()->volume, row.isSilent ? 0.0 : 0.3);
            QCOMPARE(rig.services->wallpaper.sound().silenceReason(),
                     row.isSilent ? u"正在录制系统声音"_s : QString());
            rig.stop();
            QCOMPARE(rig.surface()->volume, 0.3);
        }
    }

    void recordsTheChosenWindow()
    {
        Rig rig;
        rig.preferences.setRecordMode(RecordMode::window);
        rig.preferences.setFpsOption(RecordFPS::fps30);
        rig.preferences.setQualityOption(RecordQuality::half);
        rig.host.screenCapture.geometryAnswer = CaptureGeometry{{801, 601}, 1.0, {1920, 1080}};
        rig.recorder.windows().refreshWindows();
        settle();
        rig.recorder.windows().select(u"7"_s);
        rig.start();
        QVERIFY(rig.recorder.isRecording());
        QVERIFY(rig.lines().contains(u"[2/6] ✅ 窗口 Editor"_s));
        QVERIFY(rig.lines().contains(u"[3/6] 捕获像素 400x300 二分之一 30fps 系统音频=false 麦克风=false"_s));
        QCOMPARE(rig.state->filter.windowId, std::optional<quint32>(7));
        QCOMPARE(rig.state->configuration.queueDepth, 3);
        QCOMPARE(rig.state->movie->keyFrameInterval, 30);
    }

    void stopsAndValidates()
    {
        Rig rig;
        rig.start(120);
        rig.clock.advance(2100ms);
        RecordLiveUI &live = rig.recorder.log().live();
        QCOMPARE(live.frameCountUI(), 120);
        QCOMPARE(live.elapsedSeconds(), 2);
        QTRY_COMPARE(live.fileSize(), 20'000); // measured on a thread
        rig.stop();
        QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
        QCOMPARE(rig.linesSinceItRuns(),
                 (QStringList{u"停止录制 mode=manual 视频帧=120 系统音频=0 麦克风=0"_s, u"stopCapture 完成"_s,
                              u"✅ 可播放 duration=5.00 录制_20260301_090000.mp4 size=20000"_s}));
        const RecordingOutcome saved{Kind::saved, {}, rig.path, 5, 20'000};
        QCOMPARE(rig.session.outcome(), saved);
        QVERIFY(!rig.state->alive);
        rig.clock.advance(1h);
        // Only the write of the settings was left.
        QCOMPARE(rig.clock.pendingCount(), standingAlarms);
    }

    void whatEndsDuringItsStartLeavesNothing()
    {
        for (const QString &why : {QString(), u"窗口已关闭"_s}) {
            Rig rig;
            rig.state->startDelay = 100ms;
            rig.start();
            if (why.isEmpty())
                rig.stop();
            else
                rig.host.screenCapture.session()->observer.streamStopped(Failure{why});
            rig.clock.advance(1s);
            QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
            QVERIFY(rig.state->calls.contains(u"stopCapture"_s) && !rig.state->alive);
            QVERIFY(!QFile::exists(rig.path));
            QVERIFY(!rig.services->settings.contains(u"Velbrix_ScreenRecord_unfinishedFiles"_s));
            const RecordingOutcome outcome{why.isEmpty() ? Kind::calledOff : Kind::failed, why};
            QCOMPARE(rig.session.outcome(), outcome);
        }
    }

    void aSecondStopIsIgnored()
    {
        Rig rig;
        rig.state->stopDelay = 100ms;
        rig.start();
        rig.stop();
        rig.stop();
        QVERIFY(rig.recorder.isRecording());
        rig.clock.advance(1s);
        QVERIFY(!rig.recorder.isRecording());
        QCOMPARE(rig.state->calls.filter(u"stopCapture"_s).size(), 1);
    }

    void theSystemWritesTheMovieWhereItCan()
    {
        const std::tuple<bool, bool, QString> rows[] = {
            {false, false, u"[5/6] ✅ 模式=SCRecordingOutput（无音频直写）"_s},
            {true, false, u"[5/6] ✅ 模式=SCRecordingOutput + 音频配置"_s},
            {false, true, u"[5/6] SCRecordingOutput 失败，回退手动:不支持"_s},
            {true, true, u"[5/6] 带音频的系统直写失败，回退手动:不支持"_s}};
        for (const auto &[hasSound, fallsBack, line] : rows) {
            Rig rig;
            rig.host.screenCapture.featuresAnswer.recordingOutput = true;
            rig.preferences.setRecordSystemAudio(hasSound);
            if (fallsBack)
                rig.state->refused[u"addRecordingOutput"_s] = u"不支持"_s;
            rig.start();
            QVERIFY(rig.recorder.isRecording());
            QVERIFY2(rig.lines().contains(line), qPrintable(line));
            QCOMPARE(rig.lines().contains(u"[5/6] ✅ 模式=手动 AVAssetWriter"_s), fallsBack);
            QCOMPARE(rig.state->movie.has_value(), fallsBack);
        }
    }

    void theSystemsMovieIsWaitedFor()
    {
        for (const bool answers : {true, false}) {
            Rig rig;
            rig.host.screenCapture.featuresAnswer.recordingOutput = true;
            rig.start();
            rig.stop();
            rig.clock.advance(9999ms);
            QVERIFY(rig.recorder.isRecording() && !rig.state->calls.contains(u"removeRecordingOutput"_s));
            if (answers)
                rig.host.screenCapture.session()->observer.recordingFinished();
            else
                rig.clock.advance(1ms);
            settle();
            QVERIFY(!rig.recorder.isRecording() && rig.state->calls.contains(u"removeRecordingOutput"_s));
            QCOMPARE(rig.lines().contains(u"✅ SCRecordingOutput 收尾完成"_s), answers);
        }
    }

    void aSystemThatFailsEndsTheRecording()
    {
        Rig rig;
        rig.host.screenCapture.featuresAnswer.recordingOutput = true;
        rig.start();
        rig.host.screenCapture.session()->observer.recordingStarted();
        rig.host.screenCapture.session()->observer.recordingFailed(Failure{u"磁盘"_s});
        settle();
        QVERIFY(!rig.recorder.isRecording());
        QCOMPARE(rig.linesSinceItRuns(),
                 (QStringList{u"✅ SCRecordingOutput 开始写文件"_s, u"❌ SCRecordingOutput 失败:磁盘"_s,
                              u"停止录制 mode=system 视频帧=0 系统音频=0 麦克风=0"_s, u"stopCapture 完成"_s,
                              u"removeRecordingOutput 完成（stop 之后）"_s, u"❌ 系统录制失败:磁盘"_s,
                              u"✅ 可播放 duration=5.00 录制_20260301_090000.mp4 size=20000"_s}));
    }

    void anyStepMayFail()
    {
        for (const QString &step : {u"content"_s, u"geometry"_s, u"makeSession"_s, u"openWriter"_s,
                                    u"addOutput screen"_s, u"startCapture"_s}) {
            Rig rig;
            const auto content = rig.host.screenCapture.contentAnswer;
            if (step == u"content")
                rig.host.screenCapture.contentAnswer->displays.clear();
            rig.state->refused[step] = u"没有找到显示器"_s;
            rig.start();
            QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
            QCOMPARE(rig.lines().last(), u"❌ 没有找到显示器"_s);
            const RecordingOutcome failed{Kind::failed, u"没有找到显示器"_s};
            QCOMPARE(rig.session.outcome(), failed);
            QVERIFY(!QFile::exists(rig.path));
            QVERIFY(!rig.services->settings.contains(u"Velbrix_ScreenRecord_unfinishedFiles"_s));

            // The way is free for the next start.
            rig.host.screenCapture.contentAnswer = content;
            rig.host.screenCapture.nextSession = std::make_shared<FakeCaptureState>();
            rig.recorder.start();
            settle();
            QVERIFY(rig.recorder.isRecording());
            QCOMPARE(rig.session.outcome(), RecordingOutcome());
        }
    }

    void tracksAndSystemsThatDoNotHear()
    {
        using Arrange = void (*)(Rig &);
        const std::pair<Arrange, QStringList> rows[] = {
            {[](Rig &r) { r.state->tracks.emplace(); },
             {u"无法添加系统音频轨"_s,
              u"无法添加麦克风轨（可能容器限制），将与系统音合并尝试失败时忽略）"_s}},
            {[](Rig &r) { r.state->refused[u"addOutput systemAudio"_s] = u"没有音轨"_s; },
             {u"⚠️ 无法挂载系统音频 output:没有音轨"_s}},
            {[](Rig &r) { r.host.screenCapture.featuresAnswer.microphone = false; },
             {u"当前系统 < macOS 15，无法用 SCStream 录麦克风"_s}}};
        for (const auto &[cannot, lines] : rows) {
            Rig rig;
            rig.preferences.setRecordSystemAudio(true);
            rig.preferences.setRecordMicrophone(true);
            cannot(rig);
            rig.start();
            QVERIFY(rig.recorder.isRecording());
            for (const QString &line : lines)
                QVERIFY2(rig.lines().contains(line), qPrintable(line));
            const bool canHear = rig.host.screenCapture.featuresAnswer.microphone;
            QCOMPARE(rig.state->configuration.capturesMicrophone, canHear);
            QCOMPARE(rig.state->movie->microphone, canHear);
        }
    }

    void aStreamThatEndsByItselfKeepsItsMovie()
    {
        Rig rig;
        rig.start(60);
        rig.state->refused[u"stopCapture"_s] = u"已断开"_s;
        rig.host.screenCapture.session()->observer.warning(u"麦克风已断开"_s);
        rig.host.screenCapture.session()->observer.streamStopped(Failure{u"窗口已关闭"_s});
        settle();
        QVERIFY(!rig.recorder.isRecording());
        QCOMPARE(rig.linesSinceItRuns().first(2),
                 (QStringList{u"⚠️ 麦克风已断开"_s, u"❌ 流异常停止:窗口已关闭"_s}));
        QVERIFY(rig.lines().contains(u"stopCapture 警告:已断开"_s));
        const RecordingOutcome cutShort{Kind::cutShort, u"窗口已关闭"_s, rig.path, 5, 20'000};
        QCOMPARE(rig.session.outcome(), cutShort);
        QCOMPARE(rig.recorder.log().live().warning(), u"麦克风已断开"_s);
    }

    void endings()
    {
        const QString good = u"✅ 可播放 duration=5.00 录制_20260301_090000.mp4 size=20000"_s;
        const QString bad = u"❌ 不可播放 playable=false duration=0.000 size=20000 mode=manual"_s;
        const QString gone = u"❌ 输出文件不存在"_s;
        const QString unknown = u"校验没有结果，文件保留：x"_s;
        const QString full = u"磁盘已满"_s;
        const auto noAnswer = failure(u"x"_s);
        const MovieFacts plays{true, 5, true, 1};
        const QString slip = u"录制不到半秒，没有保留文件"_s;
        const struct {
            int frames;
            std::optional<QString> finish; // why it fails
            Result<MovieFacts> facts;
            bool isKept;
            QString outcome;
            QStringList lines; // the last ones
            std::chrono::milliseconds lasted = 1s;
        } rows[] = {
            {3,
             QString(),
             MovieFacts{},
             false,
             u"3 影片没有写完"_s,
             {u"❌ finishWriting 失败:unknown"_s, gone}},
            {3,
             full,
             plays,
             true,
             u"2 影片没有写完：磁盘已满"_s,
             {u"❌ finishWriting 失败:磁盘已满"_s, good}},
            {0,
             {},
             MovieFacts{},
             false,
             u"3 没有录到画面"_s,
             {u"❌ 手动写入失败: frames=0 sessionStarted=false"_s, gone}},
            {3, {}, MovieFacts{true, 5, false, 2}, true, u"1 "_s, {good, u"no video, audioTracks=2"_s}},
            {3, {}, noAnswer, true, u"3 x，文件已保留"_s, {bad, unknown}},
            {3, {}, MovieFacts{}, true, u"3 影片不能播放，文件已保留"_s, {bad, u"no video, audioTracks=0"_s}},
            {3,
             full,
             noAnswer,
             true,
             u"3 影片没有写完：磁盘已满"_s,
             {u"❌ finishWriting 失败:磁盘已满"_s, bad, unknown}},
            {3, {}, MovieFacts{true, 0.3, true, 0}, false, u"4 "_s, {slip}, 499ms},
            {3, {}, noAnswer, true, u"3 x，文件已保留"_s, {bad, unknown}, 499ms},
            {3, full, MovieFacts{true, 0.3, true, 0}, true, u"2 影片没有写完：磁盘已满"_s, {}, 499ms}};
        for (const auto &[frames, finish, facts, isKept, outcome, lines, lasted] : rows) {
            Rig rig;
            rig.start(frames);
            rig.clock.advance(lasted);
            if (finish)
                rig.state->refused[u"finishWriting"_s] = *finish;
            rig.host.movieFiles.facts = facts;
            rig.stop();
            QVERIFY(!rig.recorder.isRecording());
            QCOMPARE(rig.lines().last(lines.size()), lines);
            QCOMPARE(QFile::exists(rig.path), isKept);
            const RecordingOutcome told = rig.session.outcome();
            QCOMPARE(u"%1 %2"_s.arg(static_cast<int>(told.kind)).arg(told.reason), outcome);
            QCOMPARE(!told.file.isEmpty(), isKept);
        }
    }

    void theValidationWaitsThreeSeconds()
    {
        Rig rig;
        rig.host.movieFiles.delay = 1h;
        rig.start(3);
        rig.recorder.stop();
        rig.clock.advance(2999ms);
        QVERIFY(rig.recorder.isRecording());
        rig.clock.advance(1ms);
        QVERIFY(!rig.recorder.isRecording());
        QVERIFY(rig.lines().last(2).first().startsWith(u"❌ 不可播放 playable=false"_s));
        rig.clock.advance(2h); // the late answer harms nobody
    }

    void aMovieIsRememberedUntilItIsGood()
    {
        const QString key = u"Velbrix_ScreenRecord_unfinishedFiles"_s;
        for (const bool plays : {true, false}) {
            Rig rig;
            rig.start(3);
            QCOMPARE(rig.host.settings.stored.value(key).toArray(), QJsonArray{rig.path});
            rig.host.movieFiles.facts->isPlayable = plays;
            rig.stop();
            QCOMPARE(rig.services->settings.contains(key), !plays);
        }
    }

    void survivesItsOwnDeathWhileStarting()
    {
        Rig rig;
        rig.state->startDelay = 10ms;
        rig.start();
        rig.services.reset();
        rig.clock.advance(1s);
        QVERIFY(!rig.state->alive);
    }
};

QTEST_GUILESS_MAIN(RecordingSessionTest)
#include "RecordingSessionTest.moc"
