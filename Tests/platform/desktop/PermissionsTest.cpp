#include "platform/linux/desktop/LinuxPermissions.h"

#include <QGuiApplication>

using namespace velbrix;
using namespace Qt::StringLiterals;

class PermissionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anX11SessionGuardsNothing()
    {
        LinuxPermissions permissions;
        QVERIFY(permissions.preflightScreenCapture());
        QVERIFY(permissions.requestScreenCapture());
        QCOMPARE(permissions.microphone(), AuthorizationStatus::authorized);
        QCOMPARE(permissions.camera(), AuthorizationStatus::authorized);
        QVERIFY(permissions.accessibilityTrusted());
    }

    void everyPaneIsExplained()
    {
        LinuxPermissions permissions;
        for (const PrivacyPane pane :
             {PrivacyPane::screenCapture, PrivacyPane::microphone, PrivacyPane::camera,
              PrivacyPane::accessibility, PrivacyPane::notifications}) {
            QVERIFY(permissions.explanation(pane).contains(u"Linux"_s));
            QVERIFY(!permissions.openSettings(pane));
        }
    }
};

QTEST_MAIN(PermissionsTest)
#include "PermissionsTest.moc"
