#include "support/WindowRig.h"
#include "views/Theme.h"
#include "views/components/Confirmation.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QSet>

class NoticeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstLaunchCountsDownBeforeItMayBeConfirmed()
    {
        WindowRig rig;
        rig.start(false);
        QPushButton *const confirm = rig.button(u"noticeConfirm"_s);
        QVERIFY(confirm);
        QVERIFY(!confirm->isEnabled());
        rig.clock.advance(3s);
        QCOMPARE(
            rig.find<QLabel>(u"noticeMessage"_s)->text(),
            u"欢迎使用 Velbrix。请认真阅读以下声明。为保障你的权益并降低法律风险，首次启动需等待7秒后才能确认。"_s);
        rig.key(Qt::Key_Escape);
        rig.key(Qt::Key_2, Qt::ControlModifier);
        QVERIFY(rig.button(u"noticeConfirm"_s));
        QCOMPARE(rig.services->router.activeTab(), u"wallpaper"_s);

        rig.clock.advance(7s);
        QCOMPARE(confirm->text(), u"我已阅读并同意"_s);
        QTest::mouseClick(confirm, Qt::LeftButton);
        QVERIFY(rig.services->privacy.hasAcceptedFirstLaunchNotice());
        QVERIFY(!rig.button(u"noticeConfirm"_s));
    }

    void featureNotice_data()
    {
        QTest::addColumn<QString>("button"); // empty: the key
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("agrees");
        QTest::newRow("confirm") << u"noticeConfirm"_s << 0 << true;
        QTest::newRow("cancel") << u"noticeCancel"_s << 0 << false;
        QTest::newRow("escape") << QString() << int(Qt::Key_Escape) << false;
        QTest::newRow("return") << QString() << int(Qt::Key_Return) << true;
    }
    void featureNotice()
    {
        QFETCH(QString, button);
        QFETCH(int, key);
        QFETCH(bool, agrees);
        WindowRig rig;
        rig.start();
        int runs = 0;
        rig.services->privacy.guard(featurePrivacyNotice(PrivacyConsentKind::systemAudio), [&] { ++runs; });
        QCOMPARE(rig.find<QLabel>(u"noticeTitle"_s)->text(), u"系统音频隐私确认"_s);
        QCOMPARE(rig.find<QLabel>(u"noticeMessage"_s)->text(),
                 u"开启后，录制会捕获系统播放的声音。音频仅保存在本地，不会上传。是否同意？"_s);
        if (button.isEmpty())
            rig.key(static_cast<Qt::Key>(key));
        else
            QTest::mouseClick(rig.button(button), Qt::LeftButton);
        QCOMPARE(runs, agrees ? 1 : 0);
        QCOMPARE(rig.services->privacy.hasConsent(PrivacyConsentKind::systemAudio), agrees);
        QVERIFY(!rig.find(u"noticeSheet"_s));
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

    void destructiveIsNeverTheDefault()
    {
        WindowRig rig;
        Theme theme(rig.host.desktop, rig.host.symbols);
        QWidget surface;
        surface.resize(800, 600);
        NoticeSheet::Words words;
        words.title = u"删除"_s;
        words.confirm = u"删除"_s;
        words.cancel = u"取消"_s;
        words.isDestructive = true;
        NoticeSheet sheet(theme, words, &surface);
        QSignalSpy confirmed(&sheet, &NoticeSheet::confirmed);
        QSignalSpy cancelled(&sheet, &NoticeSheet::cancelled);
        surface.show();
        QVERIFY(QTest::qWaitForWindowExposed(&surface));
        QTest::keyClick(surface.focusWidget(), Qt::Key_Return);
        QCOMPARE(confirmed.count(), 0);
        QCOMPARE(cancelled.count(), 1);
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
        const auto ask = [&](const QString &title) {
            NoticeSheet::Words words;
            words.title = title;
            Confirmation::ask(
                theme, rig.window(), words, [&answers, title] { answers.append(u"yes "_s + title); },
                [&answers, title] { answers.append(u"no "_s + title); });
        };
        ask(u"one"_s);
        ask(u"two"_s);
        QCOMPARE(answers, QStringList{u"no one"_s});
        QCOMPARE(rig.find<QLabel>(u"noticeTitle"_s)->text(), u"two"_s);
        rig.key(Qt::Key_Return);
        QCOMPARE(answers.last(), u"yes two"_s);
        QVERIFY(!rig.find(u"confirmation"_s));
    }

    void reviewClosesByKeyOrButton_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("escape") << true;
        QTest::newRow("button") << false;
    }
    void reviewClosesByKeyOrButton()
    {
        QFETCH(bool, byKey);
        WindowRig rig;
        rig.start();
        rig.delegate->showPrivacyStatement();
        QCOMPARE(rig.find<QLabel>(u"noticeTitle"_s)->text(), u"隐私与使用声明"_s);
        if (byKey)
            rig.key(Qt::Key_Escape);
        else
            QTest::mouseClick(rig.button(u"noticeConfirm"_s), Qt::LeftButton);
        QVERIFY(!rig.find(u"noticeSheet"_s));
    }
};

QTEST_MAIN(NoticeTest)
#include "NoticeTest.moc"
