#include "foundation/NotificationCenter.h"
#include "support/Test.h"

class NotificationCenterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reachesObserversOfTheNameInOrder()
    {
        NotificationCenter center;
        QStringList seen;
        const auto note = [&](const QString &who) {
            return [&seen, who](const QVariantMap &info) { seen << who + info.value(u"body"_s).toString(); };
        };
        const auto first = center.observe(u"banner"_s, note(u"1"_s));
        auto second = center.observe(u"banner"_s, note(u"2"_s));
        const auto other = center.observe(u"other"_s, note(u"3"_s));
        center.post(u"banner"_s, {{u"body"_s, u"hi"_s}});
        QCOMPARE(seen, (QStringList{u"1hi"_s, u"2hi"_s}));
        second.reset();
        center.post(u"banner"_s);
        QCOMPARE(seen.size(), 3);
        QVERIFY(center.hasObserver(u"banner"_s));
        QVERIFY(!center.hasObserver(u"nobody"_s));
    }
};

QTEST_GUILESS_MAIN(NotificationCenterTest)
#include "NotificationCenterTest.moc"
