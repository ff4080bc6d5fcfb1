#include "platform/linux/x11/capture/X11ScreenCapture.h"

#include "support/PaintedWindow.h"
#include "support/RecordingRig.h"
#include "support/Test.h"

#include <QCoreApplication>

namespace {

constexpr QColor green(0, 160, 0);
constexpr QColor red(200, 0, 0);

std::optional<CapturableWindow> find(const ShareableContent &content, const PaintedWindow &window)
{
    for (const CapturableWindow &each : content.windows) {
        if (each.windowId == window.id())
            return each;
    }
    return std::nullopt;
}

struct Desktop {
    Desktop()
    {
        for (PaintedWindow *window : {&lower, &upper}) {
            window->show();
            [[maybe_unused]] const bool isExposed = QTest::qWaitForWindowExposed(window);
        }
        upper.raise();
    }

    Result<ShareableContent> content() { return QCoro::waitFor(rig.capture.shareableContent()); }

    PaintedWindow lower{u"文档 — 编辑器"_s, QRect(100, 120, 400, 300), green};
    PaintedWindow upper{u"Upper"_s, QRect(60, 90, 500, 400), red, Qt::FramelessWindowHint};
    RecordingRig rig;
};

} // namespace

class X11ScreenCaptureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsDisplays()
    {
        RecordingRig rig;
        const auto content = QCoro::waitFor(rig.capture.shareableContent());
        QVERIFY(content);
        QCOMPARE(content->displays.size(), 1);
        QCOMPARE(content->displays.first().frame, QRectF(0, 0, 1280, 800));
        QVERIFY(content->displays.first().isMain);
        const auto again = QCoro::waitFor(rig.capture.shareableContent());
        QCOMPARE(again->displays, content->displays);
        const auto geometry = rig.capture.geometry(rig.mainDisplay());
        QVERIFY(geometry);
        QCOMPARE(*geometry, (CaptureGeometry{QSizeF(1280, 800), 1.0, QSize(1280, 800)}));
    }

    // Inside a Wayland session the server lists displays and windows as well.
    void anObstacleIsTheAnswerToEverything()
    {
        const PaintedWindow window(u"Black"_s, QRect(100, 120, 400, 300), green);
        X11ScreenCapture capture(MovieRecorder::create, {}, u"看不到屏幕"_s);
        const auto content = QCoro::waitFor(capture.shareableContent());
        QVERIFY(!content);
        QCOMPARE(content.error().message, u"看不到屏幕"_s);
        QVERIFY(!QCoro::waitFor(capture.windowImage(window.id(), {100, 100})));
        StreamConfiguration configuration;
        configuration.width = 1280;
        configuration.height = 800;
        QVERIFY(!capture.makeSession(RecordingRig().mainDisplay(), configuration, {}));
    }

    void listsWindowsFrontToBack()
    {
        Desktop desktop;
        QTRY_VERIFY(desktop.content() && find(*desktop.content(), desktop.upper));
        const auto content = desktop.content();
        const auto upper = find(*content, desktop.upper);
        const auto lower = find(*content, desktop.lower);
        QVERIFY(upper && lower);
        QVERIFY(content->windows.indexOf(*upper) < content->windows.indexOf(*lower));
        QCOMPARE(lower->title, u"文档 — 编辑器"_s);
        QCOMPARE(lower->appName, u"X11ScreenCaptureTest"_s);
        QCOMPARE(lower->bundleId, u"X11ScreenCaptureTest"_s);
        QCOMPARE(lower->processId, QCoreApplication::applicationPid());
        QVERIFY(lower->isNormal);
        QCOMPARE(upper->frame, QRectF(60, 90, 500, 400));
        // Decorations of the window manager are part of the window.
        QCOMPARE(lower->frame, QRectF(desktop.lower.frameGeometry()));
        QVERIFY(lower->frame.height() > 300);

        desktop.upper.hide();
        QTRY_VERIFY(!find(*desktop.content(), desktop.upper));
        desktop.lower.showMinimized();
        QTRY_VERIFY(!find(*desktop.content(), desktop.lower));
    }

    void tellsPartsOfTheDesktop_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<bool>("isNormal");
        QTest::newRow("desktop") << QByteArray("_NET_WM_WINDOW_TYPE_DESKTOP") << false;
        QTest::newRow("dock") << QByteArray("_NET_WM_WINDOW_TYPE_DOCK") << false;
        QTest::newRow("dialog") << QByteArray("_NET_WM_WINDOW_TYPE_DIALOG") << true;
    }
    void tellsPartsOfTheDesktop()
    {
        QFETCH(QByteArray, type);
        QFETCH(bool, isNormal);
        PaintedWindow window(u"Part"_s, QRect(10, 10, 200, 100), green);
        const auto connection = X11Connection::open();
        QVERIFY(connection);
        const quint32 id = window.id();
        xcb_connection_t *const xcb = (*connection)->xcb();
        // Qt writes its own type when it shows the window; a program's that follows wins.
        window.show();
        const xcb_atom_t atom = (*connection)->atom(type.constData());
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, id, (*connection)->atom("_NET_WM_WINDOW_TYPE"),
                            XCB_ATOM_ATOM, 32, 1, &atom);
        (*connection)->sync();
        RecordingRig rig;
        const auto listed = [&] {
            const auto content = QCoro::waitFor(rig.capture.shareableContent());
            return content ? find(*content, window) : std::nullopt;
        };
        QTRY_VERIFY(listed());
        QCOMPARE(listed()->isNormal, isNormal);
    }

    void takesPicturesOfCoveredWindows()
    {
        Desktop desktop;
        const auto image =
            QCoro::waitFor(desktop.rig.capture.windowImage(desktop.lower.id(), QSize(160, 160)));
        QVERIFY(image);
        QCOMPARE(image->width(), 160);
        QVERIFY(image->height() < 160 && image->height() > 100);
        QCOMPARE(image->pixelColor(80, 80), green);
        QCOMPARE(image->pixelColor(150, image->height() - 6), green);
    }

    void refusesPictures_data()
    {
        QTest::addColumn<bool>("composite");
        QTest::addColumn<QString>("why");
        QTest::newRow("window gone") << true << u"窗口已关闭"_s;
        QTest::newRow("no composite") << false << u"X 服务器没有 Composite 扩展，无法单独录制窗口"_s;
    }
    void refusesPictures()
    {
        QFETCH(bool, composite);
        QFETCH(QString, why);
        X11Abilities allowed;
        allowed.composite = composite;
        RecordingRig rig(allowed);
        const auto image = QCoro::waitFor(rig.capture.windowImage(0x7fffff, QSize(100, 100)));
        QVERIFY(!image);
        QCOMPARE(image.error().message, why);
    }

    void reportsALostServer()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", ":4711");
        RecordingRig rig;
        const auto content = QCoro::waitFor(rig.capture.shareableContent());
        const auto geometry = rig.capture.geometry({});
        qputenv("DISPLAY", display);
        QCOMPARE(content.error().message, u"无法连接 X 服务器"_s);
        QCOMPARE(geometry.error().message, u"无法连接 X 服务器"_s);
    }
};

QTEST_MAIN(X11ScreenCaptureTest)
#include "X11ScreenCaptureTest.moc"
