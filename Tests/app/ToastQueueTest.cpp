#include "app/Toast.h"

#include "support/Test.h"
#include "support/VirtualClock.h"

namespace {

struct Rig {
    VirtualClock clock;
    ToastQueue queue{clock};

    void show(const QString &body, std::chrono::milliseconds duration = 2s)
    {
        Toast toast;
        toast.body = body;
        toast.duration = duration;
        queue.show(toast);
    }
    QString seen() const
    {
        QString text;
        for (const Toast &toast : queue.visible())
            text += toast.body;
        return text;
    }
};

} // namespace

class ToastQueueTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTheUserInfo()
    {
        const Toast full = toastFromUserInfo({{u"title"_s, u"T"_s},
                                              {u"body"_s, u"B"_s},
                                              {u"icon"_s, u"camera.viewfinder"_s},
                                              {u"duration"_s, 2}});
        QCOMPARE(full, (Toast{0, u"T"_s, u"B"_s, u"camera.viewfinder"_s, ToastTone::plain, 2000ms}));
        QCOMPARE(toastFromUserInfo({{u"body"_s, u"B"_s}}).duration, 3000ms);
        QCOMPARE(toastFromUserInfo({{u"duration"_s, -1}}).duration, 3000ms);
        QCOMPARE(toastFromUserInfo({{u"duration"_s, 1e9}}).duration, 60'000ms);
    }

    void hidesEachAfterItsTime()
    {
        Rig rig;
        rig.show(u"a"_s, 2s);
        rig.clock.advance(1s);
        rig.show(u"b"_s, 2s);
        rig.clock.advance(1s);
        QCOMPARE(rig.seen(), u"b"_s);
        rig.clock.advance(1s);
        QCOMPARE(rig.seen(), QString());
        QCOMPARE(rig.clock.pendingCount(), 0);
    }

    void showsThreeAndKeepsTheOthersWaiting()
    {
        Rig rig;
        for (const QString &body : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
            rig.show(body);
        QCOMPARE(rig.seen(), u"abc"_s);
        rig.queue.dismiss(rig.queue.visible().first().id);
        QCOMPARE(rig.seen(), u"bcd"_s);
        rig.clock.advance(1h);
        QCOMPARE(rig.seen(), QString());
    }

    void theSameAgainOnlyStaysLonger()
    {
        Rig rig;
        rig.show(u"a"_s);
        rig.clock.advance(1500ms);
        rig.show(u"a"_s);
        QCOMPARE(rig.queue.visible().size(), 1);
        rig.clock.advance(1500ms);
        QCOMPARE(rig.seen(), u"a"_s);
        rig.clock.advance(500ms);
        QCOMPARE(rig.seen(), QString());
    }

    void staysWhileThePointerRestsOnIt()
    {
        Rig rig;
        rig.show(u"a"_s);
        rig.queue.setHeld(true);
        rig.clock.advance(1min);
        QCOMPARE(rig.seen(), u"a"_s);
        rig.queue.setHeld(false);
        rig.clock.advance(999ms);
        QCOMPARE(rig.seen(), u"a"_s);
        rig.clock.advance(1ms);
        QCOMPARE(rig.seen(), QString());
    }
};

QTEST_GUILESS_MAIN(ToastQueueTest)
#include "ToastQueueTest.moc"
