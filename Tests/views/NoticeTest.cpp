#include "support/WindowRig.h"
#include "views/Theme.h"
#include "views/components/Confirmation.h"

#include <QScrollArea>
#include <QScrollBar>

class NoticeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void featureNotice()
    {
        WindowRig rig;
        rig.start();
        int runs = 0;
        const auto ask = [&](PrivacyConsentKind kind) {
            rig.services->privacy.guard(featurePrivacyNotice(kind), [&] { ++runs; });
            return rig.text(u"noticeTitle"_s);
        };
        QCOMPARE(ask(PrivacyConsentKind::systemAudio), u"系统音频隐私确认"_s);
        QCOMPARE(rig.text(u"noticeMessage"_s),
                 u"开启后，录制会捕获系统播放的声音。音频仅保存在本地，不会上传。是否同意？"_s);
        rig.click(u"noticeCancel"_s);
        QVERIFY(!rig.find(u"noticeSheet"_s));
        QCOMPARE(runs, 0);
        ask(PrivacyConsentKind::systemAudio);
        rig.key(Qt::Key_Return);
        QCOMPARE(ask(PrivacyConsentKind::microphone), u"麦克风隐私确认"_s);
        rig.click(u"noticeConfirm"_s);
        QVERIFY(!rig.find(u"noticeSheet"_s));
        QCOMPARE(runs, 2);
    }

    void focusStaysInTheSheet()
    {
        WindowRig rig;
        rig.start();
        rig.services->privacy.guard(featurePrivacyNotice(PrivacyConsentKind::microphone), [] {});
        const QWidget *const sheet = rig.find(u"noticeSheet"_s);
        QSet<QWidget *> visited;
        for (int step = 0; step < 5; ++step) {
            rig.key(Qt::Key_Tab);
            QVERIFY(sheet->isAncestorOf(rig.window()->focusWidget()));
            visited.insert(rig.window()->focusWidget());
        }
        QCOMPARE(visited.size(), 2);
    }

    void manyDetailsScroll()
    {
        WindowRig rig;
        rig.start();
        rig.window()->resize(900, 600);
        const Theme theme(rig.host.desktop, rig.host.symbols);
        NoticeSheet::Words words;
        words.title = words.message = words.confirm = u"清理"_s;
        words.details = QStringList(80, u"一个项目"_s);
        Confirmation::ask(theme, rig.window(), words, [] {});
        const QWidget *const confirm = rig.button(u"noticeConfirm"_s);
        const QPoint end = confirm->mapTo(rig.window(), confirm->rect().bottomRight());
        QVERIFY(rig.window()->rect().contains(end));
        const QScrollBar *const bar = rig.find<QScrollArea>(u"noticeDetails"_s)->verticalScrollBar();
        QVERIFY(bar->maximum() > 0);
        rig.key(Qt::Key_PageDown);
        QVERIFY(bar->value() > 0);
    }

    void newerQuestionTakesTheOlderOnesPlace()
    {
        WindowRig rig;
        rig.start();
        const Theme theme(rig.host.desktop, rig.host.symbols);
        QStringList answers;
        const auto ask = [&](const QString &title, bool isDestructive) {
            NoticeSheet::Words words;
            words.title = words.confirm = words.cancel = title;
            words.isDestructive = isDestructive;
            Confirmation::ask(
                theme, rig.window(), words, [&answers, title] { answers.append(u"yes "_s + title); },
                [&answers, title] { answers.append(u"no "_s + title); });
        };
        ask(u"one"_s, false);
        ask(u"two"_s, false);
        QCOMPARE(answers, QStringList{u"no one"_s});
        QCOMPARE(rig.text(u"noticeTitle"_s), u"two"_s);
        rig.key(Qt::Key_Return);
        QCOMPARE(answers.last(), u"yes two"_s);
        QVERIFY(!rig.find(u"confirmation"_s));
        ask(u"three"_s, true); // what destroys is never the default
        rig.key(Qt::Key_Return);
        QCOMPARE(answers.last(), u"no three"_s);
    }
};

QTEST_MAIN(NoticeTest)
#include "NoticeTest.moc"
