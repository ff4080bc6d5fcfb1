#include "platform/macos/capture/WindowOrder.h"
#include "support/Test.h"

class WindowOrderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void followsTheNumbersAndKeepsStrangersBehind()
    {
        QList<CapturableWindow> windows;
        for (const quint32 id : {9u, 4u, 7u, 5u, 2u}) {
            CapturableWindow window;
            window.windowId = id;
            windows.append(window);
        }
        QList<quint32> order;
        for (const CapturableWindow &window : frontToBack(windows, {2, 30, 7, 4}))
            order.append(window.windowId);
        QCOMPARE(order, (QList<quint32>{2, 7, 4, 9, 5}));
    }
};

QTEST_GUILESS_MAIN(WindowOrderTest)
#include "WindowOrderTest.moc"
