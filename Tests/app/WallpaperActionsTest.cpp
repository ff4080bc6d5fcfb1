#include "support/WallpaperRig.h"

namespace {

struct Rig : WallpaperRig {
    explicit Rig(bool accepted = true, bool agreed = true)
        : WallpaperRig({{u"Velbrix_Privacy_firstLaunchAccepted"_s, accepted},
                        {u"Velbrix_Privacy_consent_videoWallpaper"_s, agreed}})
    {
    }

    // "" for done, the reason otherwise; a refusal begins with "!".
    QString answer(QCoro::Task<WallpaperActions::Outcome> task)
    {
        std::optional<WallpaperActions::Outcome> outcome;
        task.then([&](WallpaperActions::Outcome now) { outcome = std::move(now); });
        settleThreads();
        if (!outcome)
            return u"…"_s;
        return *outcome ? **outcome : u"!"_s + outcome->error().message;
    }

    WallpaperActions &actions = make().wallpaperActions;
    const QString a = video(u"a.mp4"_s);
    const QString b = video(u"b.mp4"_s);
};

} // namespace

class WallpaperActionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theStatementComesFirst()
    {
        Rig rig(false);
        QSignalSpy needed(&rig.services->privacy, &PrivacyManager::statementNeeded);
        const QString open = u"!尚未完成首启声明确认。请先在 Velbrix 窗口中确认。"_s;
        QCOMPARE(rig.answer(rig.actions.playVideo(rig.a)), open);
        QCOMPARE(rig.answer(rig.actions.play()), open);
        rig.actions.togglePlayPause();
        QCOMPARE(needed.count(), 3);
        QVERIFY(!rig.services->privacy.pendingFeatureNotice());
        QVERIFY(rig.host.mediaProbe.calls.isEmpty());
        QVERIFY(!rig.wallpaper().isShowing());
    }

    void theFirstVideoAsksAndThenPlays()
    {
        Rig rig(true, false);
        QCOMPARE(rig.answer(rig.actions.playVideo(rig.a)),
                 u"!需要先在 Velbrix 窗口中确认：视频壁纸隐私确认"_s);
        QVERIFY(rig.host.mediaProbe.calls.isEmpty());
        rig.answer(rig.actions.play()); // changes nothing about the choice
        rig.plugSecond();
        rig.answer(rig.actions.playVideoOn(2, rig.a));
        rig.answer(rig.actions.playVideoOn(2, rig.b));
        rig.services->privacy.confirmPendingNotice();
        QTRY_COMPARE(rig.host.surfaces.surfaces.size(), 2);
        QCOMPARE(rig.surface()->path, rig.a);
        QTRY_COMPARE(rig.surface(1)->path, rig.b);
    }

    void whatWasDeclinedIsForgotten()
    {
        Rig rig(true, false);
        rig.answer(rig.actions.playVideo(rig.a));
        rig.services->privacy.cancelPendingNotice();
        rig.wallpaper().preferences().setLastVideoPath(rig.b);
        rig.answer(rig.actions.play());
        rig.services->privacy.confirmPendingNotice();
        QTRY_VERIFY(rig.surface());
        QCOMPARE(rig.surface()->path, rig.b);
    }

    void theFirstVideoIsSilentUntilToldOtherwise()
    {
        Rig rig;
        rig.answer(rig.actions.playVideo(rig.a));
        QCOMPARE(rig.surface()->volume, 0.0);
        rig.wallpaper().preferences().setMuted(false);
        QCOMPARE(rig.surface()->volume, 0.3);
        rig.answer(rig.actions.playVideo(rig.b));
        QCOMPARE(rig.surface()->volume, 0.3);
    }

    void choosingAVideoMeansVideos()
    {
        Rig rig;
        rig.wallpaper().setContentMode(WallpaperContentMode::html);
        QCOMPARE(rig.answer(rig.actions.playVideo(rig.a)), QString());
        QCOMPARE(rig.wallpaper().preferences().contentMode(), WallpaperContentMode::video);
        QCOMPARE(rig.answer(rig.actions.playVideo(rig.b)), QString());
        QCOMPARE(rig.surface()->path, rig.b);
        QCOMPARE(rig.wallpaper().state(), (WallpaperState{WallpaperState::Kind::playing, rig.b, {}}));
    }

    void aBadFileChangesNothing()
    {
        Rig rig;
        rig.answer(rig.actions.playVideo(rig.a));
        rig.host.mediaProbe.factsOf[rig.b] = failure(u"坏了"_s);
        QSignalSpy told(&rig.wallpaper(), &WallpaperController::stateChanged);
        QCOMPARE(rig.answer(rig.actions.playVideo(rig.b)), u"!无法读取视频：坏了"_s);
        QCOMPARE(rig.surface()->path, rig.a);
        QVERIFY(rig.surface()->isPlaying);
        told.clear();
        rig.answer(rig.actions.playVideo(rig.b));
        QVERIFY(told.count() > 0); // the same again is news again
    }

    void theNewerOfTwoVideosWins()
    {
        Rig rig;
        rig.host.mediaProbe.delay = 100ms;
        QStringList answers;
        const auto keep = [&](const WallpaperActions::Outcome &outcome) {
            answers.append(outcome ? u"done"_s : outcome.error().message);
        };
        rig.actions.playVideo(rig.a).then(keep);
        rig.actions.playVideo(rig.b).then(keep);
        rig.clock.advance(1s);
        rig.settleThreads();
        QCOMPARE(answers, (QStringList{u"已被后来的操作取代"_s, u"done"_s}));
        QCOMPARE(rig.surface()->path, rig.b);
    }

    void playsWhatThereIs()
    {
        Rig rig;
        QCOMPARE(rig.answer(rig.actions.play()), u"!请先选择一个视频"_s);
        rig.wallpaper().preferences().setLastVideoPath(rig.a);
        QCOMPARE(rig.answer(rig.actions.play()), QString());
        QCOMPARE(rig.surface()->path, rig.a);
        rig.actions.togglePlayPause();
        QVERIFY(rig.wallpaper().isPaused());
        rig.actions.togglePlayPause();
        QVERIFY(!rig.wallpaper().isPaused());
        rig.actions.pause();
        QVERIFY(rig.wallpaper().isPaused());
        QCOMPARE(rig.answer(rig.actions.play()), QString());
        QVERIFY(rig.surface()->isPlaying);
        rig.actions.stop();
        rig.actions.togglePlayPause();
        QVERIFY(rig.surface()->isPlaying);
        rig.actions.stop();
        QVERIFY(QFile::remove(rig.a));
        QCOMPARE(rig.answer(rig.actions.play()), u"!上次的视频已不在原处，请重新选择：a.mp4"_s);
    }

    void eachDisplayHasItsOwn()
    {
        Rig rig;
        rig.plugSecond();
        const QString bad = rig.video(u"bad.mp4"_s);
        rig.host.mediaProbe.factsOf[bad] = VideoFacts{};
        QCOMPARE(rig.answer(rig.actions.playVideoOn(2, bad)), u"!视频中没有画面轨道"_s);
        QCOMPARE(rig.answer(rig.actions.playVideoOn(2, rig.b)), QString());
        QCOMPARE(rig.surface(0)->path, rig.b);
        QCOMPARE(rig.answer(rig.actions.playVideoOn(1, rig.a)), QString());
        QCOMPARE(rig.surface(1)->path, rig.a);
        rig.actions.stop();
        QCOMPARE(rig.answer(rig.actions.play()), QString());
        QCOMPARE(rig.surface(0)->path, rig.a);
        QCOMPARE(rig.surface(1)->path, rig.b);
        rig.wallpaper().displays().setMultiDisplayTarget(2);
        rig.answer(rig.actions.playChosenVideo(rig.a));
        QCOMPARE(rig.surface(1)->path, rig.a);
        rig.wallpaper().displays().setMultiDisplayTarget(std::nullopt);
        rig.answer(rig.actions.playChosenVideo(rig.b));
        QCOMPARE(rig.surface(0)->path, rig.b);
    }

    void aDisplaysVideoStartsTheWallpaper()
    {
        Rig rig;
        rig.plugSecond();
        rig.wallpaper().preferences().setLastVideoPath(rig.a);
        QCOMPARE(rig.answer(rig.actions.playVideoOn(2, rig.b)), QString());
        QCOMPARE(rig.surface(0)->path, rig.a);
        QCOMPARE(rig.surface(1)->path, rig.b);
    }
};

QTEST_GUILESS_MAIN(WallpaperActionsTest)
#include "WallpaperActionsTest.moc"
