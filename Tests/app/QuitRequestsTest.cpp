#include "app/QuitRequests.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTest>
#include <QTimer>

using namespace velbrix;

class QuitRequestsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theEventLoopGoesOnUntilItIsEndedInOrder()
    {
        int requests = 0;
        const QuitRequests watch([&requests] { ++requests; });
        bool wentOn = false;
        QTimer::singleShot(0, QCoreApplication::instance(), [] { QCoreApplication::quit(); });
        QTimer::singleShot(20, QCoreApplication::instance(), [&wentOn] {
            wentOn = true;
            QCoreApplication::exit(3);
        });
        QCOMPARE(QCoreApplication::exec(), 3);
        QVERIFY(wentOn);
        QCOMPARE(requests, 1);
    }
};

QTEST_GUILESS_MAIN(QuitRequestsTest)
#include "QuitRequestsTest.moc"
