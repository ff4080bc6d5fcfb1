#include "capture/WindowCatalog.h"

#include "capture/RecorderLog.h"
#include "support/FakeScreenCapture.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QCoreApplication>

namespace {

CapturableWindow window(quint32 id, const QString &title, QRectF frame = {0, 0, 800, 600})
{
    return {id, title, u"App"_s, {}, 1, frame};
}

struct Rig {
    VirtualClock clock;
    FakeScreenCapture capture{clock};
    RecorderLog log;
    WindowCatalog catalog{capture, log};

    void show(const QList<CapturableWindow> &windows)
    {
        capture.contentAnswer->windows = windows;
        catalog.refreshWindows();
        settle();
    }
};

} // namespace

class WindowCatalogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void offersOnlyWindowsOfOthersThatSomebodyWouldRecord()
    {
        CapturableWindow own = window(2, u"Own"_s);
        own.processId = 77;
        CapturableWindow desktop = window(3, u"Desktop"_s);
        desktop.isNormal = false;
        const auto items =
            recordableWindows({window(1, u"Editor"_s), own, desktop, window(4, u" "_s),
                               window(5, u"Tiny"_s, {0, 0, 39, 600}), window(6, u"Edge"_s, {0, 0, 40, 40})},
                              77);
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[0], (WindowItem{u"1"_s, u"Editor"_s, u"App"_s, {}, 1, QRectF(0, 0, 800, 600)}));
        QCOMPARE(items[1].id, u"6"_s);
    }

    void thumbnailSizes()
    {
        QCOMPARE(thumbnailSize({0, 0, 1920, 1080}), QSize(320, 180));
        QCOMPARE(thumbnailSize({0, 0, 300, 1000}), QSize(60, 200));
        QCOMPARE(thumbnailSize({0, 0, 101, 51}), QSize(100, 50)); // not larger than the window
        QCOMPARE(thumbnailSize({0, 0, 3000, 1}), QSize(320, 2));
    }

    void takesThumbnailsOneAfterAnother()
    {
        Rig rig;
        rig.capture.imageDelay = 10ms;
        rig.capture.nextSession->refused[u"windowImage 2"_s] = u"gone"_s;
        rig.show({window(1, u"A"_s), window(2, u"B"_s), window(3, u"C"_s)});
        QVERIFY(rig.catalog.isLoadingWindowThumbs());
        QCOMPARE(rig.capture.calls, (QStringList{u"shareableContent"_s, u"windowImage 1 266x200"_s}));
        rig.clock.advance(10ms);
        QCOMPARE(rig.catalog.windowThumbnails().keys(), QStringList{u"1"_s});
        rig.clock.advance(1s);
        QVERIFY(!rig.catalog.isLoadingWindowThumbs());
        QCOMPARE(rig.catalog.windowThumbnails().size(), 2);
        QCOMPARE(rig.log.logLines(), QStringList{u"窗口缩略图已更新"_s});
    }

    void aNewRefreshTakesOver()
    {
        Rig rig;
        rig.capture.imageDelay = 10ms;
        rig.show({window(1, u"A"_s), window(2, u"B"_s)});
        rig.show({window(9, u"Z"_s)});
        rig.clock.advance(1s);
        QCOMPARE(rig.catalog.windowThumbnails().keys(), QStringList{u"9"_s});
        QCOMPARE(rig.log.logLines().size(), 1);
        // And it stops when nobody looks.
        rig.capture.calls.clear();
        rig.show({window(1, u"A"_s), window(2, u"B"_s)});
        rig.catalog.cancelThumbnails();
        rig.clock.advance(1s);
        QVERIFY(!rig.catalog.isLoadingWindowThumbs());
        QCOMPARE(rig.capture.calls.filter(u"windowImage"_s).size(), 1);
    }

    void theSelectionGoesWithItsWindow()
    {
        Rig rig;
        rig.show({window(1, u"A"_s), window(2, u"B"_s)});
        rig.catalog.select(u"2"_s);
        rig.show({window(2, u"B"_s)});
        QCOMPARE(rig.catalog.selectedWindowID(), std::optional(u"2"_s));
        rig.show({window(1, u"A"_s)});
        QCOMPARE(rig.catalog.selectedWindowID(), std::nullopt);
        rig.capture.contentAnswer = failure(u"X 已断开"_s);
        rig.catalog.refreshWindows();
        settle();
        QCOMPARE(rig.log.logLines().last(), u"加载窗口失败:X 已断开"_s);
    }
};

QTEST_GUILESS_MAIN(WindowCatalogTest)
#include "WindowCatalogTest.moc"
