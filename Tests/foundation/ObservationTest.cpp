#include "foundation/Cancellation.h"
#include "foundation/NotificationCenter.h"
#include "support/Test.h"

class ObservationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void notifiesTheOldestFirst()
    {
        ObserverList<void(int)> list;
        QStringList seen;
        const auto note = [&](const QString &who) {
            return [&seen, who](int value) { seen << who + QString::number(value); };
        };
        const Observation first = list.add(note(u"a"_s));
        Observation second =
            list.add(note(u"b"_s), [&] { seen << (list.isEmpty() ? u"last"_s : u"ended"_s); });
        list.notify(1);
        second.reset();
        list.notify(2);
        QCOMPARE(seen, (QStringList{u"a1"_s, u"b1"_s, u"ended"_s, u"a2"_s}));
    }

    void asksTheNewestFirstUntilOneAnswers()
    {
        ObserverList<bool()> list;
        QString asked;
        bool answer = false;
        const Observation older = list.add([&] { return asked += u'o', false; });
        const Observation newer = list.add([&] { return asked += u'n', answer; });
        QVERIFY(!list.ask());
        answer = true;
        QVERIFY(list.ask());
        QCOMPARE(asked, u"non"_s);
    }

    void aCallMayChangeTheList()
    {
        ObserverList<void()> list;
        QString seen;
        Observation self, next, added;
        self = list.add([&] {
            seen += u's';
            next.reset();
            added = list.add([&] { seen += u'a'; });
            self.reset();
        });
        next = list.add([&] { seen += u'n'; });
        list.notify();
        QCOMPARE(seen, u"s"_s);
        list.notify();
        QCOMPARE(seen, u"sa"_s);
    }

    void aCallMayDestroyTheList()
    {
        std::optional<ObserverList<void()>> list(std::in_place);
        int calls = 0;
        const auto destroy = [&] {
            ++calls;
            list.reset();
        };
        const Observation first = list->add(destroy);
        const Observation second = list->add(destroy);
        list->notify();
        QCOMPARE(calls, 1);
    }

    void anAssignmentEndsTheFormer()
    {
        ObserverList<void()> list;
        QString heard;
        Observation held = list.add([&] { heard += u'a'; });
        held = list.add([&] { heard += u'b'; });
        list.notify();
        QCOMPARE(heard, u"b"_s);
        held = Observation();
        QVERIFY(list.isEmpty() && !held);
    }

    void postsReachTheObserversOfTheirName()
    {
        NotificationCenter center;
        QStringList heard;
        Observation banner = center.observe(
            u"banner"_s, [&](const QVariantMap &info) { heard << info.value(u"body"_s).toString(); });
        const Observation other =
            center.observe(u"other"_s, [&](const QVariantMap &) { heard << u"other"_s; });
        center.post(u"banner"_s, {{u"body"_s, u"hi"_s}});
        QCOMPARE(heard, QStringList{u"hi"_s});
        banner.reset();
        QVERIFY(!center.hasObserver(u"banner"_s) && center.hasObserver(u"other"_s));
    }

    void everyListenerHearsACancellationOnce()
    {
        Cancellation work;
        int calls = 0;
        const Observation first = work.onCancel([&] { ++calls; });
        const Observation second = work.onCancel([&] { ++calls; });
        Observation ended = work.onCancel([&] { calls += 10; });
        ended.reset();
        Cancellation copy = work;
        copy.cancel();
        work.cancel();
        QVERIFY(work.isCancelled());
        QCOMPARE(calls, 2);
        const Observation late = work.onCancel([&] { ++calls; });
        QCOMPARE(calls, 3);
    }

    void passesACancellationOnWhileObserved()
    {
        Cancellation from;
        const Cancellation to, other;
        const Observation link = from.passTo(to);
        (void)from.passTo(other);
        from.cancel();
        QVERIFY(to.isCancelled());
        QVERIFY(!other.isCancelled());
    }
};

QTEST_GUILESS_MAIN(ObservationTest)
#include "ObservationTest.moc"
