#include "platform/macos/desktop/SurfaceVisibility.h"
#include "support/Test.h"

class SurfaceVisibilityTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void coversADisplayOnlyWhenAllItsWindowsAre()
    {
        QCOMPARE(coveredDisplays({{1, false}, {2, true}, {3, false}, {3, true}}), QSet<quint32>{1});
        QVERIFY(coveredDisplays({}).isEmpty());
    }
};

QTEST_GUILESS_MAIN(SurfaceVisibilityTest)
#include "SurfaceVisibilityTest.moc"
