#include "platform/linux/x11/capture/X11ScreenCapture.h"

#include "platform/x11/DesktopTools.h"
#include "support/PaintedWindow.h"
#include "support/RecordingRig.h"
#include "support/Test.h"

#include <QCoreApplication>

namespace {

constexpr QColor green(0, 160, 0);
constexpr QColor red(200, 0, 0);

// With a window that another one covers.
struct Desktop : RecordingRig {
    Desktop()
    {
        for (PaintedWindow *window : {&lower, &upper}) {
            window->show();
            [[maybe_unused]] const bool isExposed = QTest::qWaitForWindowExposed(window);
        }
        upper.raise();
    }

    PaintedWindow lower{u"文档 — 编辑器"_s, QRect(100, 120, 400, 300), green};
    PaintedWindow upper{u"Upper"_s, QRect(60, 90, 500, 400), red, Qt::FramelessWindowHint};
};

} // namespace

class X11ScreenCaptureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsDisplays()
    {
        RecordingRig rig;
        const auto content = QCoro::waitFor(rig.capture.shareableContent());
        QVERIFY(content && content->displays.size() == 1);
        QCOMPARE(content->displays.first().frame, QRectF(0, 0, 1280, 800));
        QCOMPARE(*rig.capture.geometry(rig.mainDisplay()),
                 (CaptureGeometry{QSizeF(1280, 800), 1.0, QSize(1280, 800)}));
    }

    // Inside a Wayland session the server lists displays and windows as well.
    void anObstacleIsTheAnswerToEverything()
    {
        const PaintedWindow window(u"Black"_s, QRect(100, 120, 400, 300), green);
        X11ScreenCapture capture(MovieRecorder::create, {}, u"看不到屏幕"_s);
        QCOMPARE(errorText(QCoro::waitFor(capture.shareableContent())), u"看不到屏幕"_s);
        QVERIFY(!QCoro::waitFor(capture.windowImage(window.id(), {100, 100})));
        StreamConfiguration configuration;
        configuration.width = 1280;
        configuration.height = 800;
        QVERIFY(!capture.makeSession(RecordingRig().mainDisplay(), configuration, {}));
    }

    void listsWindowsFrontToBack()
    {
        Desktop rig;
        QTRY_VERIFY(rig.listed(rig.upper.id()) && rig.listed(rig.lower.id()));
        const auto content = QCoro::waitFor(rig.capture.shareableContent());
        const auto upper = rig.listed(rig.upper.id());
        const auto lower = rig.listed(rig.lower.id());
        QVERIFY(content->windows.indexOf(*upper) < content->windows.indexOf(*lower));
        QCOMPARE(lower->title, u"文档 — 编辑器"_s);
        QCOMPARE(lower->appName, u"X11ScreenCaptureTest"_s);
        QCOMPARE(lower->bundleId, u"X11ScreenCaptureTest"_s);
        QCOMPARE(lower->processId, QCoreApplication::applicationPid());
        QVERIFY(lower->isNormal);
        QCOMPARE(upper->frame, QRectF(60, 90, 500, 400));
        // Decorations of the window manager are part of the window.
        QCOMPARE(lower->frame, QRectF(rig.lower.frameGeometry()));
        QVERIFY(lower->frame.height() > 300);

        rig.upper.hide();
        QTRY_VERIFY(!rig.listed(rig.upper.id()));
        rig.lower.showMinimized();
        QTRY_VERIFY(!rig.listed(rig.lower.id()));
    }

    void tellsPartsOfTheDesktop()
    {
        RecordingRig rig;
        for (const auto &[type, isNormal] : {std::pair("_NET_WM_WINDOW_TYPE_DESKTOP", false),
                                             {"_NET_WM_WINDOW_TYPE_DOCK", false},
                                             {"_NET_WM_WINDOW_TYPE_DIALOG", true}}) {
            ForeignWindow window(QRect(10, 10, 200, 100));
            window.set("_NET_WM_WINDOW_TYPE", type);
            window.map();
            QTRY_VERIFY(rig.listed(window.id()));
            QVERIFY2(rig.listed(window.id())->isNormal == isNormal, type);
        }
    }

    void takesPicturesOfCoveredWindows()
    {
        Desktop rig;
        const auto image = QCoro::waitFor(rig.capture.windowImage(rig.lower.id(), QSize(160, 160)));
        QVERIFY(image);
        QCOMPARE(image->width(), 160);
        QVERIFY(image->height() < 160 && image->height() > 100);
        QCOMPARE(image->pixelColor(80, 80), green);
        QCOMPARE(image->pixelColor(150, image->height() - 6), green);
    }

    void refusesPictures()
    {
        const auto refused = [](const X11Abilities &allowed) {
            return errorText(
                QCoro::waitFor(RecordingRig(allowed).capture.windowImage(0x7fffff, QSize(100, 100))));
        };
        QCOMPARE(refused({}), u"窗口已关闭"_s);
        X11Abilities plain;
        plain.composite = false;
        QCOMPARE(refused(plain), u"X 服务器没有 Composite 扩展，无法单独录制窗口"_s);
    }

    void reportsALostServer()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", ":4711");
        RecordingRig rig;
        const QString content = errorText(QCoro::waitFor(rig.capture.shareableContent()));
        const QString geometry = errorText(rig.capture.geometry({}));
        qputenv("DISPLAY", display);
        QCOMPARE(content, u"无法连接 X 服务器"_s);
        QCOMPARE(geometry, content);
    }
};

QTEST_MAIN(X11ScreenCaptureTest)
#include "X11ScreenCaptureTest.moc"
