#include "app/Tools.h"
#include "support/WindowRig.h"
#include "views/Page.h"
#include "views/StatusItem.h"

#include <QAction>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>

namespace {

QAction *action(StatusItem &item, const QString &text)
{
    const auto all = item.menu().actions();
    for (QAction *candidate : all) {
        if (candidate->text() == text)
            return candidate;
    }
    return nullptr;
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
        QVERIFY(rig.services->isInBackground());
        rig.window()->move(300, 300);
        rig.delegate->showWindow();
        QVERIFY(rig.window()->isVisible());
        QCOMPARE(rig.window()->geometry(), frame);
    }

    void closingWithoutTrayMinimizes()
    {
        WindowRig rig;
        rig.host.desktop.trayHost = false;
        rig.start();
        QVERIFY(!rig.ui->statusItem());
        rig.window()->close();
        QVERIFY(rig.window()->isMinimized());
        rig.delegate->showWindow();
        QVERIFY(rig.ui->isMainWindowVisible());
    }

    void framesOffTheScreens_data()
    {
        QTest::addColumn<QRect>("frame");
        QTest::addColumn<bool>("usable");
        QTest::newRow("inside") << QRect(10, 10, 900, 600) << true;
        QTest::newRow("half to the right") << QRect(1500, 10, 900, 600) << true;
        QTest::newRow("a few pixels") << QRect(1890, 10, 900, 600) << false;
        QTest::newRow("title above the screen") << QRect(10, -60, 900, 600) << false;
        QTest::newRow("unplugged screen") << QRect(4000, 10, 900, 600) << false;
        QTest::newRow("second screen") << QRect(-1200, 10, 900, 600) << true;
    }
    void framesOffTheScreens()
    {
        QFETCH(QRect, frame);
        QFETCH(bool, usable);
        const QList<QRect> screens = {QRect(0, 0, 1920, 1080), QRect(-1280, 0, 1280, 1024)};
        QCOMPARE(liesOnAScreen(frame, screens), usable);
    }

    void tabsByKeyboard()
    {
        WindowRig rig;
        rig.start();
        QVERIFY(rig.find(u"wallpaperPage"_s));
        QVERIFY(!rig.window()->findChild<QWidget *>(u"settingsPage"_s)); // made when first shown
        for (qsizetype i = 0; i < tools().size(); ++i) {
            rig.key(static_cast<Qt::Key>(Qt::Key_1 + i), Qt::ControlModifier);
            QVERIFY(rig.button(u"tab."_s + tools()[i].identifier)->isChecked());
            QCOMPARE(rig.window()->findChildren<Page *>().size(), i + 1); // each tool has its own
        }
        QVERIFY(rig.find(u"settingsPage"_s));
        rig.button(u"tab.settings"_s)->setFocus();
        rig.key(Qt::Key_Up);
        QCOMPARE(rig.services->router.activeTab(), tools()[tools().size() - 2].identifier);
        rig.key(Qt::Key_Down);
        QCOMPARE(rig.services->router.activeTab(), u"settings"_s);
    }

    void trayMenu()
    {
        WindowRig rig;
        rig.start();
        StatusItem &item = *rig.ui->statusItem();
        QAction *const header = action(item, u"屏幕录制"_s);
        QVERIFY(header);
        QVERIFY(!header->isEnabled());
        QCOMPARE(action(item, u"退出"_s)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
        QCOMPARE(action(item, u"播放壁纸"_s)->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
        QVERIFY(!action(item, u"播放壁纸"_s)->isEnabled());
        action(item, u"隐私与声明…"_s)->trigger();
        QTRY_VERIFY(rig.find(u"noticeSheet"_s));
    }

    void recordingShowsInTray()
    {
        WindowRig rig;
        rig.start();
        StatusItem &item = *rig.ui->statusItem();
        const auto picture = [&] { return item.picture().pixmap(32).toImage(); };
        const QImage resting = picture();
        QVERIFY(item.picture().isMask());
        rig.services->recorder.startFullScreen();
        QTRY_VERIFY(rig.services->recorder.isRecording());
        QVERIFY(picture() != resting);
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
        rig.start();
        rig.services->router.show(u"recorder"_s);
        rig.services->recorder.startFullScreen();
        QTRY_VERIFY(rig.services->recorder.isRecording());
        QVERIFY(rig.find(u"recorderPage"_s)->isEnabled());
        rig.delegate->quitApp();
        QVERIFY(!rig.find(u"recorderPage"_s)->isEnabled());
        QVERIFY(!rig.button(u"tab.settings"_s)->isEnabled());
        QVERIFY(rig.until([&] { return !rig.services->recorder.isProcessing(); }));
    }
};

QTEST_MAIN(WidgetInterfaceTest)
#include "WidgetInterfaceTest.moc"
