#include "app/Tools.h"
#include "support/WindowRig.h"
#include "views/Page.h"
#include "views/StatusItem.h"

#include <QAction>

namespace {

QAction *action(StatusItem &item, const QString &text)
{
    const auto all = item.menu().actions();
    const auto found = std::ranges::find(all, text, &QAction::text);
    return found == all.end() ? nullptr : *found;
}

} // namespace

class WidgetInterfaceTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void closingHidesAndShowingRestores()
    {
        WindowRig rig;
        rig.start();
        const QRect frame(40, 60, 920, 640);
        rig.window()->setGeometry(frame);
        rig.window()->close();
        QVERIFY(!rig.window()->isVisible());
        rig.window()->move(300, 300);
        rig.delegate->showWindow();
        QVERIFY(rig.window()->isVisible());
        QCOMPARE(rig.window()->geometry(), frame);
    }

    void framesOffTheScreens()
    {
        const QList<QRect> screens = {QRect(0, 0, 1920, 1080), QRect(-1280, 0, 1280, 1024)};
        const auto isSeen = [&screens](int x, int y) { return liesOnAScreen({x, y, 900, 600}, screens); };
        QVERIFY(isSeen(10, 10) && isSeen(1500, 10) && isSeen(-1200, 10));
        QVERIFY(!isSeen(1890, 10)); // a few pixels
        QVERIFY(!isSeen(10, -60));  // the title above the screen
        QVERIFY(!isSeen(4000, 10)); // a screen that was unplugged
    }

    void tabsByKeyboard()
    {
        WindowRig rig;
        rig.start();
        QVERIFY(rig.find(u"wallpaperPage"_s));
        for (qsizetype i = 0; i < tools().size(); ++i) {
            rig.key(static_cast<Qt::Key>(Qt::Key_1 + i), Qt::ControlModifier);
            QVERIFY(rig.button(u"tab."_s + tools()[i].identifier)->isChecked());
            // Each tool has its own, made when it is first shown.
            QCOMPARE(rig.window()->findChildren<Page *>().size(), i + 1);
        }
        QVERIFY(rig.find(u"settingsPage"_s));
        rig.button(u"tab.settings"_s)->setFocus();
        rig.key(Qt::Key_Up);
        QCOMPARE(rig.services->router.activeTab(), tools()[tools().size() - 2].identifier);
        rig.key(Qt::Key_Down);
        QCOMPARE(rig.services->router.activeTab(), u"settings"_s);
    }

    void trayMenuAndPicture()
    {
        WindowRig rig;
        rig.consentTo(PrivacyConsentKind::screenRecording);
        rig.start();
        StatusItem &item = *rig.ui->statusItem();
        QCOMPARE(action(item, u"播放壁纸"_s)->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
        // The keys beside the entries work in the window and in the open menu.
        rig.key(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_VERIFY(rig.services->recorder.isRecording());
        QTest::keyClick(&item.menu(), Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_VERIFY(!rig.services->recorder.isRecording());
        action(item, u"隐私与声明…"_s)->trigger();
        QTRY_VERIFY(rig.find(u"noticeSheet"_s));

        const auto picture = [&] { return item.picture().pixmap(32).toImage(); };
        const QImage resting = picture();
        QVERIFY(item.picture().isMask());
        // Whatever the panel's colour is, something of it is seen.
        int light = 0;
        int dark = 0;
        for (int y = 0; y < resting.height(); ++y) {
            for (int x = 0; x < resting.width(); ++x) {
                const QColor seen = resting.pixelColor(x, y);
                light += seen.alpha() > 150 && seen.lightness() > 200;
                dark += seen.alpha() > 150 && seen.lightness() < 60;
            }
        }
        QVERIFY2(light > 20 && dark > 20, qPrintable(u"%1 light, %2 dark"_s.arg(light).arg(dark)));
        rig.services->recorder.start();
        QTRY_VERIFY(rig.services->recorder.isRecording());
        QVERIFY(!item.picture().isMask()); // a template would lose the red
        QVERIFY(picture().pixelColor(26, 26).red() > 200 && picture().pixelColor(26, 26).green() < 100);
        QVERIFY(action(item, u"停止当前录制"_s));
        QVERIFY(rig.find(u"ring.recorder"_s));
        rig.services->recorder.stop();
        QTRY_VERIFY(!rig.services->recorder.isRecording());
        QCOMPARE(picture(), resting);
        QVERIFY(!rig.find(u"ring.recorder"_s));
    }

    void nothingIsBegunWhileTheProgramEnds()
    {
        WindowRig rig;
        rig.host.screenCapture.nextSession->stopDelay = 1s;
        rig.open(u"recorder"_s);
        rig.services->recorder.start();
        QTRY_VERIFY(rig.services->recorder.isRecording());
        QVERIFY(rig.isEnabled(u"recorderPage"_s));
        rig.delegate->quitApp();
        QVERIFY(!rig.isEnabled(u"recorderPage"_s));
        QVERIFY(!rig.isEnabled(u"tab.settings"_s));
        QVERIFY(rig.until([&] { return !rig.services->recorder.isProcessing(); }));
    }
};

QTEST_MAIN(WidgetInterfaceTest)
#include "WidgetInterfaceTest.moc"
