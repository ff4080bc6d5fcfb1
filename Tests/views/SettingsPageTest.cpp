#include "support/WindowRig.h"
#include "views/components/Switch.h"

namespace {

constexpr quint32 controlOption = HotkeyChord::controlKey | HotkeyChord::optionKey;

struct Rig : WindowRig {
    void open() { WindowRig::open(u"settings"_s); }
    void press(quint32 keyCode, quint32 modifiers)
    {
        host.keys.pressLocal({.keyCode = keyCode, .modifiers = modifiers});
    }
    void capture() const { click(u"shortcut.recordToggle.chord"_s); }
    QString chord() const { return text(u"shortcut.recordToggle.chord"_s); }
    QString hint() const { return text(u"shortcut.recordToggle.hint"_s); }
};

} // namespace

class SettingsPageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shortcutIsCaptured()
    {
        Rig rig;
        rig.host.hotkeys.taken = {{4, controlOption}};
        rig.open();
        QCOMPARE(rig.text(u"shortcut.hideDock.hint"_s), u"未生效：已被其他程序占用"_s);
        QVERIFY(!rig.find(u"shortcut.windowSwitcher"_s)); // there is no such tool
        QCOMPARE(rig.chord(), u"Ctrl+Alt+0"_s);
        rig.capture();
        QCOMPARE(rig.hint(), u"请按下：至少一个修饰键 + 主键（Esc 取消）"_s);
        rig.press(15, 0);
        QCOMPARE(rig.hint(), u"无效：必须带 Ctrl / Alt / Shift / Super 至少一个修饰键"_s);
        rig.press(15, controlOption);
        QCOMPARE(rig.chord(), u"Ctrl+Alt+R"_s);
        QCOMPARE(rig.hint(), QString());
        rig.click(u"shortcut.recordToggle.reset"_s);
        QCOMPARE(rig.chord(), u"Ctrl+Alt+0"_s);
        QVERIFY(!rig.find(u"shortcut.recordToggle.reset"_s));

        // A default that another action has is refused here, until the other lets go of it.
        rig.capture();
        rig.press(15, controlOption);
        rig.services->hotkeys.beginCapture(HotkeyAction::hideDock);
        rig.services->hotkeys.handleCapturedKey({29, controlOption});
        rig.click(u"shortcut.recordToggle.reset"_s);
        QCOMPARE(rig.hint(), u"与隐藏面板快捷键冲突，请换一组"_s);
        QVERIFY(rig.services->hotkeys.captureHint().isEmpty());
        rig.services->hotkeys.resetToDefault(HotkeyAction::hideDock);
        QCOMPARE(rig.hint(), QString());
    }

    void leavingCancelsTheCapture()
    {
        for (const bool byTab : {true, false}) {
            Rig rig;
            rig.open();
            rig.capture();
            QCOMPARE(rig.services->hotkeys.captureTarget(), HotkeyAction::recordToggle);
            if (byTab)
                rig.services->router.show(u"recorder"_s);
            else
                rig.find(u"loginItem"_s)->setFocus();
            QCOMPARE(rig.services->hotkeys.captureTarget(), HotkeyAction::none);
        }
    }

    void loginItem()
    {
        Rig rig;
        rig.open();
        const auto *const control = rig.find<Switch>(u"loginItem"_s);
        rig.click(u"loginItem"_s);
        QVERIFY(rig.host.loginItem.enabled);
        QVERIFY(control->isChecked());
        rig.host.loginItem.failsWith = u"目录不可写"_s;
        rig.click(u"loginItem"_s);
        QVERIFY(control->isChecked());
        QVERIFY(rig.texts(u"loginRow"_s).contains(u"没有改成：目录不可写"_s));
    }

    void aDownloadCanBeMoved()
    {
        Rig installed;
        installed.open();
        QVERIFY(!installed.find(u"installRow"_s));
        Rig rig;
        rig.host.installPlace.misplaced = u"/Users/a/Downloads/Velbrix.app"_s;
        rig.host.installPlace.moveAnswer = failure(u"磁盘已满"_s);
        rig.open();
        rig.click(u"autoMoveToAppDir"_s);
        QVERIFY(!rig.services->installOffer.autoMoveToAppDir());
        rig.click(u"moveToApplications"_s);
        QVERIFY(rig.texts(u"installRow"_s).contains(u"没有移动：磁盘已满"_s));
    }

    void permissions()
    {
        Rig rig;
        FakePermissions &system = rig.host.permissions;
        system.screenCaptureGranted = false;
        system.cameraStatus = AuthorizationStatus::denied;
        system.explanations = {{PrivacyPane::microphone, u"无需授权。"_s},
                               {PrivacyPane::camera, u"没有摄像头。"_s}};
        rig.host.notifications.current.mayNotify = false;
        rig.open();
        const auto says = [&](int row, const QString &text) {
            return rig.texts(u"permission.%1"_s.arg(row)).contains(text);
        };
        QVERIFY(says(0, u"未授予"_s));
        QVERIFY(says(1, u"✓ 可用"_s) && says(1, u"无需授权。"_s) && !rig.find(u"openPane.1"_s));
        QTRY_VERIFY(says(2, u"未授予"_s));
        QVERIFY(says(3, u"不可用"_s) && says(3, u"没有摄像头。"_s));
        rig.click(u"openPane.0"_s);
        QVERIFY(says(0, u"无法打开系统设置，请手动前往隐私设置"_s));

        system.screenCaptureGranted = true;
        rig.host.notifications.current.mayNotify = true;
        rig.services->router.show(u"recorder"_s);
        rig.services->router.show(u"settings"_s);
        QVERIFY(says(0, u"✓ 已授予"_s));
        QTRY_VERIFY(says(2, u"✓ 已授予"_s));
    }

    void statementIsReviewed()
    {
        Rig rig;
        rig.open();
        QVERIFY(rig.texts(u"privacyRow"_s).contains(u"你已同意首启使用声明。可随时在托盘菜单再次查看。"_s));
        rig.click(u"reviewStatement"_s);
        QCOMPARE(rig.text(u"noticeTitle"_s), u"隐私与使用声明"_s);
        rig.key(Qt::Key_Escape);
        QVERIFY(!rig.find(u"noticeSheet"_s));
        rig.click(u"reviewStatement"_s);
        rig.click(u"noticeConfirm"_s);
        QVERIFY(!rig.find(u"noticeSheet"_s));
    }
};

QTEST_MAIN(SettingsPageTest)
#include "SettingsPageTest.moc"
