#include "support/WindowRig.h"
#include "views/components/Switch.h"

namespace {

constexpr quint32 controlOption = HotkeyChord::controlKey | HotkeyChord::optionKey;

struct Rig : WindowRig {
    void open()
    {
        start();
        services->router.show(u"settings"_s);
    }
    void press(quint32 keyCode, quint32 modifiers)
    {
        host.keys.pressLocal({.keyCode = keyCode, .modifiers = modifiers});
    }
    QString chord() const { return button(u"shortcut.recordToggle.chord"_s)->text(); }
    QString hint() const
    {
        const auto *label = find<QLabel>(u"shortcut.recordToggle.hint"_s);
        return label ? label->text() : QString();
    }
};

} // namespace

class SettingsPageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyToolsThatExistHaveShortcuts()
    {
        Rig rig;
        rig.open();
        QVERIFY(rig.find(u"shortcut.recordToggle"_s));
        QVERIFY(rig.find(u"shortcut.hideDesktopIcons"_s));
        QVERIFY(rig.find(u"shortcut.hideDock"_s));
        QVERIFY(!rig.find(u"shortcut.windowSwitcher"_s));
    }

    void shortcutIsCaptured()
    {
        Rig rig;
        rig.open();
        QCOMPARE(rig.chord(), u"⌃⌥0"_s);
        QTest::mouseClick(rig.button(u"shortcut.recordToggle.chord"_s), Qt::LeftButton);
        QCOMPARE(rig.hint(), u"请按下：至少一个修饰键 + 主键（Esc 取消）"_s);
        rig.press(15, 0);
        QCOMPARE(rig.hint(), u"无效：必须带 ⌃ / ⌥ / ⇧ / ⌘ 至少一个修饰键"_s);
        rig.press(15, controlOption);
        QCOMPARE(rig.chord(), u"⌃⌥R"_s);
        QCOMPARE(rig.hint(), QString());
        QTest::mouseClick(rig.button(u"shortcut.recordToggle.reset"_s), Qt::LeftButton);
        QCOMPARE(rig.chord(), u"⌃⌥0"_s);
        QVERIFY(!rig.button(u"shortcut.recordToggle.reset"_s));
    }

    void conflictIsNamedInPlace()
    {
        Rig rig;
        rig.open();
        QTest::mouseClick(rig.button(u"shortcut.recordToggle.chord"_s), Qt::LeftButton);
        rig.press(2, controlOption);
        QCOMPARE(rig.hint(), u"与隐藏桌面快捷键冲突，请换一组"_s);
        QVERIFY(rig.services->hotkeys.captureTarget() == HotkeyAction::recordToggle);
        rig.press(53, 0);
        QCOMPARE(rig.chord(), u"⌃⌥0"_s);
        QCOMPARE(rig.hint(), QString());
    }

    void leavingCancelsTheCapture_data()
    {
        QTest::addColumn<bool>("byTab");
        QTest::newRow("another page") << true;
        QTest::newRow("another field") << false;
    }
    void leavingCancelsTheCapture()
    {
        QFETCH(bool, byTab);
        Rig rig;
        rig.open();
        QTest::mouseClick(rig.button(u"shortcut.recordToggle.chord"_s), Qt::LeftButton);
        QVERIFY(rig.services->hotkeys.captureTarget() == HotkeyAction::recordToggle);
        if (byTab)
            rig.services->router.show(u"recorder"_s);
        else
            rig.find(u"loginItem"_s)->setFocus();
        QVERIFY(rig.services->hotkeys.captureTarget() == HotkeyAction::none);
    }

    void takenShortcutSaysSo()
    {
        Rig rig;
        rig.host.hotkeys.taken = {{29, controlOption}};
        rig.open();
        QCOMPARE(rig.hint(), u"未生效：已被其他程序占用"_s);
    }

    void loginItem()
    {
        Rig rig;
        rig.open();
        auto *const control = rig.find<Switch>(u"loginItem"_s);
        QTest::mouseClick(control, Qt::LeftButton);
        QVERIFY(rig.host.loginItem.enabled);
        QVERIFY(control->isChecked());
        rig.host.loginItem.failsWith = u"目录不可写"_s;
        QTest::mouseClick(control, Qt::LeftButton);
        QVERIFY(control->isChecked());
        QVERIFY(rig.texts(u"loginRow"_s).contains(u"没有改成：目录不可写"_s));
    }

    void permissions_data()
    {
        QTest::addColumn<bool>("granted");
        QTest::addColumn<QString>("explanation");
        QTest::addColumn<QString>("state");
        QTest::newRow("granted") << true << QString() << u"✓ 已授予"_s;
        QTest::newRow("missing") << false << QString() << u"未授予"_s;
        QTest::newRow("explained") << true << u"无需授权。"_s << u"✓ 可用"_s;
        QTest::newRow("impossible") << false << u"当前会话不是 X11。"_s << u"不可用"_s;
    }
    void permissions()
    {
        QFETCH(bool, granted);
        QFETCH(QString, explanation);
        QFETCH(QString, state);
        Rig rig;
        rig.host.permissions.screenCaptureGranted = granted;
        if (!explanation.isEmpty())
            rig.host.permissions.explanations.insert(PrivacyPane::screenCapture, explanation);
        rig.open();
        const QStringList texts = rig.texts(u"permission.0"_s);
        QVERIFY(texts.contains(state));
        QPushButton *const open = rig.button(u"openPane.0"_s);
        if (!explanation.isEmpty()) {
            QVERIFY(texts.contains(explanation));
            QVERIFY(!open);
            return;
        }
        QTest::mouseClick(open, Qt::LeftButton);
        QVERIFY(rig.texts(u"permission.0"_s).contains(u"无法打开系统设置，请手动前往隐私设置"_s));
    }

    void notificationsAreAskedAtTheSystem()
    {
        Rig rig;
        rig.host.notifications.current.mayNotify = false;
        rig.open();
        QTRY_VERIFY(rig.texts(u"permission.2"_s).contains(u"未授予"_s));
        rig.host.notifications.current.mayNotify = true;
        rig.services->router.show(u"recorder"_s);
        rig.services->router.show(u"settings"_s);
        QTRY_VERIFY(rig.texts(u"permission.2"_s).contains(u"✓ 已授予"_s));
    }

    void statementIsReviewed()
    {
        Rig rig;
        rig.open();
        QVERIFY(rig.texts(u"privacyRow"_s).contains(u"你已同意首启使用声明。可随时在托盘菜单再次查看。"_s));
        QTest::mouseClick(rig.button(u"reviewStatement"_s), Qt::LeftButton);
        QCOMPARE(rig.find<QLabel>(u"noticeTitle"_s)->text(), u"隐私与使用声明"_s);
    }
};

QTEST_MAIN(SettingsPageTest)
#include "SettingsPageTest.moc"
