#include "support/FakePlatform.h"

#include <QJsonArray>

namespace {

constexpr quint32 controlOption = HotkeyChord::controlKey | HotkeyChord::optionKey;
constexpr quint32 escape = 53;

// Every action has somebody who listens.
struct Rig : ServicesRig {
    explicit Rig(const QJsonObject &stored = {}) : ServicesRig(stored)
    {
        make();
        for (const HotkeyActionInfo &info : hotkeyActions()) {
            observations.push_back(services->notifications.observe(
                info.notification, [this, info](const QVariantMap &) { posted << info.notification; }));
        }
        manager().install();
    }
    ~Rig() { observations.clear(); }

    HotkeyManager &manager() { return services->hotkeys; }
    QStringList takePosted()
    {
        QCoreApplication::processEvents();
        return std::exchange(posted, {});
    }

    std::vector<Observation> observations;
    QStringList posted;
};

} // namespace

class HotkeyManagerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void registersFiveChordsAndWatchesTheSixth()
    {
        Rig rig;
        QCOMPARE(rig.host.hotkeys.registered.keys(), (QList<quint32>{1, 2, 3, 4, 5}));
        QVERIFY(rig.host.keys.isObservedLocally());
        QVERIFY(rig.host.keys.isObservedGlobally());
    }

    void keysNobodyListensToAreLeftAlone()
    {
        ServicesRig rig;
        HotkeyManager &manager = rig.make().hotkeys;
        const auto recorder =
            rig.services->notifications.observe(u"velBrixToggleRecordingHotkey"_s, [](auto &) {});
        manager.install();
        QCOMPARE(rig.host.hotkeys.registered.keys(), QList<quint32>{1});
        QVERIFY(!rig.host.keys.isObservedGlobally());
        QVERIFY(!manager.isAvailable(HotkeyAction::clipboardHistory));
    }

    void readsStoredChords()
    {
        const QString key = u"Velbrix_Hotkey_RecordToggle"_s;
        const HotkeyChord chord{0, 0x0100};
        QCOMPARE(Rig({{key, chord.toJson()}}).manager().recordToggleHotkey(), chord);
        for (const auto &bad :
             {QJsonValue(HotkeyChord{}.toJson()), QJsonValue(QJsonArray{1}), QJsonValue(u"{"_s)})
            QCOMPARE(Rig({{key, bad}}).manager().recordToggleHotkey(), (HotkeyChord{29, controlOption}));
    }

    void postsTheActionsNotificationLater()
    {
        Rig rig;
        rig.host.hotkeys.press({9, controlOption});
        QVERIFY(rig.posted.isEmpty());
        QCOMPARE(rig.takePosted(), QStringList{u"velBrixClipboardHistoryHotkey"_s});
        rig.host.hotkeys.press({9, HotkeyChord::cmdKey});
        QCOMPARE(rig.takePosted(), QStringList());
    }

    void aTakenKeyIsToldAndTheOthersWork()
    {
        ServicesRig rig;
        rig.host.hotkeys.taken = {{48, HotkeyChord::optionKey}};
        HotkeyManager &manager = rig.make().hotkeys;
        NotificationCenter &center = rig.services->notifications;
        const auto switcher = center.observe(u"velBrixWindowSwitcherHotkey"_s, [](auto &) {});
        const auto recorder = center.observe(u"velBrixToggleRecordingHotkey"_s, [](auto &) {});
        manager.install();
        QCOMPARE(manager.problem(HotkeyAction::windowSwitcher), u"已被其他程序占用"_s);
        QCOMPARE(manager.problem(HotkeyAction::recordToggle), QString());
        rig.host.hotkeys.taken.clear();
        rig.host.hotkeys.changeKeyboard();
        QCOMPARE(manager.problem(HotkeyAction::windowSwitcher), QString());
        QVERIFY(rig.host.hotkeys.registered.contains(4));
    }

    void screenshotKey()
    {
        const auto fires = [](const HotkeyChord &chord, const KeyPress &press) {
            Rig rig({{u"Velbrix_Hotkey_Screenshot"_s, chord.toJson()}});
            const bool isSwallowed = rig.host.keys.pressLocal(press);
            const qsizetype here = rig.takePosted().size();
            rig.clock.advance(1s);
            rig.host.keys.pressGlobal(press);
            return isSwallowed && here == 1 && rig.takePosted().size() == 1;
        };
        const HotkeyChord plain{105, 0};
        const HotkeyChord withControl{105, HotkeyChord::controlKey};
        QVERIFY(fires(plain, {105, 0}));
        QVERIFY(fires(plain, {105, HotkeyChord::shiftKey}));
        QVERIFY(!fires(plain, {106, 0}));
        QVERIFY(!fires(withControl, {105, 0}));
        QVERIFY(fires(withControl, {105, 0x1200}));
    }

    void screenshotKeyFiresOncePer350Milliseconds()
    {
        Rig rig;
        QVERIFY(rig.host.keys.pressLocal({105, 0}));
        rig.host.keys.pressGlobal({105, 0});
        rig.clock.advance(349ms);
        QVERIFY(rig.host.keys.pressLocal({105, 0})); // swallowed all the same
        QCOMPARE(rig.takePosted().size(), 1);
        rig.clock.advance(1ms);
        rig.host.keys.pressGlobal({105, 0});
        QCOMPARE(rig.takePosted(), QStringList{u"velBrixScreenshotHotkey"_s});
    }

    void captures()
    {
        using enum HotkeyAction;
        const QString prompt = u"请按下：至少一个修饰键 + 主键（Esc 取消）"_s;
        const QString bare = u"无效：必须带 Ctrl / Alt / Shift / Super 至少一个修饰键"_s;
        const struct {
            const char *name;
            HotkeyAction action;
            KeyPress press;
            QString hint; // empty: taken
        } rows[] = {
            {"chord", recordToggle, {15, 0x1900}, {}},
            {"its own chord again", recordToggle, {29, controlOption}, {}},
            {"bare key", recordToggle, {15, 0}, bare},
            {"only shift", recordToggle, {56, HotkeyChord::shiftKey}, prompt},
            {"second modifier", recordToggle, {58, controlOption}, prompt},
            {"caps lock", recordToggle, {57, 0}, prompt},
            {"conflict", recordToggle, {2, controlOption}, u"与隐藏桌面快捷键冲突，请换一组"_s},
            {"conflict with the screenshot key", clipboardHistory, {105, 0}, bare},
            {"bare screenshot key", screenshot, {106, 0}, {}},
            {"no key at all", screenshot, {0, 0}, u"无效按键，请重试（Esc 取消）"_s},
            {"screenshot, only shift", screenshot, {56, 0}, u"请按下截图键（可单键，如 PrtSc；Esc 取消）"_s},
            {"screenshot conflict", screenshot, {29, controlOption}, u"与录制快捷键冲突，请换一组"_s}};
        for (const auto &[name, action, press, hint] : rows) {
            qInfo("%s", name);
            Rig rig;
            const HotkeyChord before = rig.manager().chord(action);
            rig.manager().beginCapture(action);
            QVERIFY(rig.manager().handleCapturedKey(press));
            QCOMPARE(rig.manager().captureHint(), hint);
            const bool taken = hint.isEmpty();
            const HotkeyChord chord = taken ? HotkeyChord{press.keyCode, press.modifiers} : before;
            QCOMPARE(rig.host.desktop.calls.contains(u"beep"_s), !taken && !hint.startsWith(u"请按下"));
            QCOMPARE(rig.manager().captureTarget(), taken ? none : action);
            QCOMPARE(rig.manager().chord(action), chord);
            const QJsonValue stored = rig.saved().value(hotkeyActionInfo(action).settingsKey);
            QCOMPARE(HotkeyChord::fromJson(stored), taken ? std::optional(chord) : std::nullopt);
        }
    }

    void escapeRestoresEverything()
    {
        Rig rig;
        const auto before = rig.host.hotkeys.registered;
        rig.manager().beginCapture(HotkeyAction::recordToggle);
        QVERIFY(rig.host.hotkeys.registered.isEmpty());
        // The screenshot key does not fire in the middle of a capture.
        rig.host.keys.pressGlobal({105, 0});
        rig.host.hotkeys.changeKeyboard();
        QVERIFY(rig.host.hotkeys.registered.isEmpty());
        QVERIFY(rig.manager().handleCapturedKey({escape, 0}));
        QCOMPARE(rig.manager().captureTarget(), HotkeyAction::none);
        QCOMPARE(rig.manager().captureHint(), QString());
        QCOMPARE(rig.host.hotkeys.registered, before);
        QCOMPARE(rig.takePosted(), QStringList());
        QVERIFY(!rig.manager().handleCapturedKey({15, controlOption}));
    }

    void resetsToTheDefaultUnlessItIsTaken()
    {
        Rig rig({{u"Velbrix_Hotkey_RecordToggle"_s, HotkeyChord{15, controlOption}.toJson()},
                 {u"Velbrix_Hotkey_HideDock"_s, HotkeyChord{29, controlOption}.toJson()}});
        const auto refused = rig.manager().resetToDefault(HotkeyAction::recordToggle);
        QCOMPARE(errorText(refused), u"与隐藏面板快捷键冲突，请换一组"_s);
        QCOMPARE(rig.manager().captureHint(), QString()); // nothing is being captured
        rig.manager().resetToDefault(HotkeyAction::hideDock);
        rig.manager().resetToDefault(HotkeyAction::recordToggle);
        QCOMPARE(rig.manager().recordToggleHotkey(), (HotkeyChord{29, controlOption}));
    }
};

QTEST_GUILESS_MAIN(HotkeyManagerTest)
#include "HotkeyManagerTest.moc"
