#include "platform/linux/x11/QtX11.h"
#include "platform/linux/x11/input/X11HotkeyRegistrar.h"
#include "platform/linux/x11/input/X11KeyMonitor.h"

#include "support/FakeInput.h"
#include "support/Test.h"
#include "support/XTestKeyboard.h"

#include <QApplication>
#include <QLineEdit>
#include <QProcess>
#include <QShortcut>

#include <xcb/xinput.h>

namespace {

constexpr quint32 keyA = 0;
constexpr quint32 keyD = 2;
constexpr quint32 f13 = 105;
constexpr HotkeyChord controlOptionD{2, HotkeyChord::controlKey | HotkeyChord::optionKey};
constexpr HotkeyChord controlOptionA{0, HotkeyChord::controlKey | HotkeyChord::optionKey};
constexpr HotkeyChord f15{113, 0};              // the Pause key
constexpr quint16 chordState = 1 << 2 | 1 << 3; // the control and alt bits

// What this program has selected of raw key events on the root.
bool isListening()
{
    const auto x11 = qtX11Connection();
    const XReply<xcb_input_xi_get_selected_events_reply_t> reply(xcb_input_xi_get_selected_events_reply(
        x11->xcb(), xcb_input_xi_get_selected_events(x11->xcb(), x11->root()), nullptr));
    for (auto it = xcb_input_xi_get_selected_events_masks_iterator(reply.get()); it.rem > 0;
         xcb_input_event_mask_next(&it)) {
        for (int i = 0; i < it.data->mask_len; ++i) {
            if (xcb_input_event_mask_mask(it.data)[i] & XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS)
                return true;
        }
    }
    return false;
}

// The fake or the real thing, with a user and another program around it.
struct HotkeyHost {
    explicit HotkeyHost(bool isReal)
    {
        if (isReal)
            real = std::make_unique<X11HotkeyRegistrar>(X11Keyboard::ofQt());
        const auto installed = registrar().installHandler(
            {[this](quint32 id) { pressed.append(id); }, [this] { ++layoutChanges; }});
        if (!installed)
            qFatal("no hot keys");
    }
    HotkeyRegistrar &registrar() { return real ? static_cast<HotkeyRegistrar &>(*real) : fake; }
    auto hold(const HotkeyChord &chord, quint32 id = 1) { return registrar().registerHotkey(chord, id); }
    void press()
    {
        if (real)
            user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::keyD});
        else
            fake.press(controlOptionD);
    }

    XTestKeyboard user;
    FakeHotkeyRegistrar fake;
    std::unique_ptr<X11HotkeyRegistrar> real;
    QList<quint32> pressed;
    int layoutChanges = 0;
};

} // namespace

class KeyboardTest : public QObject {
    Q_OBJECT

    std::unique_ptr<X11KeyMonitor> _monitor;
    XTestKeyboard _user;
    std::unique_ptr<QLineEdit> _field;

    void focusField()
    {
        _field = std::make_unique<QLineEdit>();
        _field->show();
        _field->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(_field->windowHandle()));
        QTRY_VERIFY(_field->hasFocus());
    }

    static void setLayout(const QString &layout, const QString &option = {})
    {
        QCOMPARE(QProcess::execute(u"setxkbmap"_s, {u"-layout"_s, layout, u"-option"_s, option}), 0);
    }

private Q_SLOTS:
    void init() { _monitor = std::make_unique<X11KeyMonitor>(X11Keyboard::ofQt()); }
    void cleanup()
    {
        _field.reset();
        _monitor.reset();
    }

    void seesKeysOfAnyProgram()
    {
        QList<KeyPress> keys;
        const auto watch = _monitor->observeGlobal([&](const KeyPress &key) { keys.append(key); });
        QVERIFY(watch);
        _user.tap({XTestKeyboard::print});
        // Let go long before the program looks.
        _user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::leftShift,
                   XTestKeyboard::leftSuper, XTestKeyboard::print});
        QTRY_COMPARE(keys.size(), 6);
        constexpr quint32 all =
            HotkeyChord::controlKey | HotkeyChord::optionKey | HotkeyChord::shiftKey | HotkeyChord::cmdKey;
        QCOMPARE(keys.first(), (KeyPress{f13, 0, false}));
        QCOMPARE(keys.last(), (KeyPress{f13, all, false}));
    }

    // Not every host tells the repeats of other programs.
    void aHeldKeyRepeats()
    {
        focusField();
        QList<KeyPress> local, global;
        const auto ours = _monitor->observeLocal([&](const KeyPress &key) {
            local.append(key);
            return false;
        });
        const auto all = _monitor->observeGlobal([&](const KeyPress &key) { global.append(key); });
        for (int round = 0; round < 2; ++round) {
            local.clear();
            global.clear();
            _user.press(XTestKeyboard::keyD);
            QTRY_VERIFY(local.size() >= 3);
            _user.release(XTestKeyboard::keyD);
            _user.tap({XTestKeyboard::keyA}); // whoever has heard this has heard what came before
            for (const QList<KeyPress> *keys : {&local, &global}) {
                QTRY_VERIFY(!keys->isEmpty() && keys->last().keyCode == keyA);
                for (qsizetype i = 0; i < keys->size(); ++i)
                    QCOMPARE(keys->at(i).isRepeat, i > 0 && i < keys->size() - 1);
            }
        }
    }

    void knowsModifiersHeldFromBefore()
    {
        _user.press(XTestKeyboard::leftControl);
        _user.sync();
        QList<KeyPress> keys;
        const auto watch = _monitor->observeGlobal([&](const KeyPress &key) { keys.append(key); });
        _user.tap({XTestKeyboard::print});
        _user.release(XTestKeyboard::leftControl);
        QTRY_VERIFY(!keys.isEmpty() && keys.last().keyCode == f13);
        QCOMPARE(keys.last().modifiers, HotkeyChord::controlKey);
    }

    void listensOnlyWhileSomeoneWatches()
    {
        QVERIFY(!isListening());
        auto first = _monitor->observeGlobal([](const KeyPress &) {});
        auto second = _monitor->observeGlobal([](const KeyPress &) {});
        QVERIFY(isListening());
        first->reset();
        QVERIFY(isListening());
        second->reset();
        QVERIFY(!isListening());
    }

    void asksTheNewestLocalWatchFirstAndOnce_data() { fakeAndReal(); }
    void asksTheNewestLocalWatchFirstAndOnce()
    {
        QFETCH(bool, isReal);
        focusField();
        FakeKeyMonitor fake;
        KeyMonitor &monitor = isReal ? static_cast<KeyMonitor &>(*_monitor) : fake;
        QStringList asked;
        bool swallows = false;
        const auto older = monitor.observeLocal([&](const KeyPress &key) {
            asked.append(u"older %1 %2"_s.arg(key.keyCode).arg(key.modifiers));
            return false;
        });
        auto newer = monitor.observeLocal([&](const KeyPress &key) {
            asked.append(u"newer %1 %2"_s.arg(key.keyCode).arg(key.modifiers));
            return swallows;
        });
        const auto askedAfterPress = [&] {
            asked.clear();
            if (isReal)
                _user.tap({XTestKeyboard::keyD});
            else
                fake.pressLocal({keyD, 0, false});
            return waitFor([&] { return !asked.isEmpty(); }) ? asked.join(u',') : QString();
        };
        QCOMPARE(askedAfterPress(), u"newer 2 0,older 2 0"_s);
        QTRY_COMPARE(_field->text(), QString(isReal ? 1 : 0, u'd'));
        swallows = true;
        QCOMPARE(askedAfterPress(), u"newer 2 0"_s);
        newer.reset();
        QCOMPARE(askedAfterPress(), u"older 2 0"_s);
    }

    void aSwallowedKeyReachesNeitherWidgetNorShortcut()
    {
        focusField();
        int triggered = 0;
        QShortcut shortcut(QKeySequence(Qt::CTRL | Qt::Key_D), _field.get());
        connect(&shortcut, &QShortcut::activated, this, [&] { ++triggered; });
        int swallowed = 0;
        auto watch = _monitor->observeLocal([&](const KeyPress &key) {
            if (key.keyCode != keyD)
                return false;
            ++swallowed;
            return true;
        });
        _user.tap({XTestKeyboard::leftControl, XTestKeyboard::keyD});
        _user.tap({XTestKeyboard::keyD});
        _user.tap({XTestKeyboard::keyA});
        QTRY_COMPARE(_field->text(), u"a"_s);
        QCOMPARE(swallowed, 2);
        QCOMPARE(triggered, 0);
        watch.reset();
        _user.tap({XTestKeyboard::leftControl, XTestKeyboard::keyD});
        QTRY_COMPARE(triggered, 1);
        QCOMPARE(swallowed, 2);
    }

    void withoutX11GlobalKeysFailInWords()
    {
        X11KeyMonitor monitor(nullptr);
        QCOMPARE(errorText(monitor.observeGlobal([](const KeyPress &) {})),
                 u"当前会话不是 X11，无法监听其他程序的按键"_s);
    }

    void aHotkeyCallsWithItsId_data() { fakeAndReal(); }
    void aHotkeyCallsWithItsId()
    {
        QFETCH(bool, isReal);
        HotkeyHost host(isReal);
        const auto first = host.hold(controlOptionD, 7);
        const auto second = host.hold(controlOptionA, 8);
        QVERIFY(first && second);
        host.press();
        QTRY_COMPARE(host.pressed, QList<quint32>{7});
    }

    void aTakenHotkeyIsRefused_data() { fakeAndReal(); }
    void aTakenHotkeyIsRefused()
    {
        QFETCH(bool, isReal);
        HotkeyHost host(isReal);
        host.fake.taken = {controlOptionD};
        QVERIFY(host.user.grab(XTestKeyboard::keyD, chordState));
        const auto refused = host.hold(controlOptionD);
        QVERIFY(!refused);
        QCOMPARE(refused.error().status, 10);
        QVERIFY(refused.error().message.contains(u"已被其他程序占用"_s));
        host.fake.taken.clear();
        host.user.ungrab(XTestKeyboard::keyD, chordState);
        auto first = host.hold(controlOptionD);
        QVERIFY(first);
        QVERIFY(!host.hold(controlOptionD, 2)); // by this program itself
        first->reset();
        QVERIFY(host.hold(controlOptionD, 2));
    }

    void aHotkeyIsGrabbedWhollyAndGivenBack()
    {
        HotkeyHost host(true);
        constexpr quint16 withCapsLock = chordState | 2;
        QVERIFY(host.user.grab(XTestKeyboard::keyD, withCapsLock));
        QVERIFY(!host.hold(controlOptionD));
        QVERIFY(host.user.grab(XTestKeyboard::keyD, chordState)); // nothing was left of the attempt
        host.user.ungrab(XTestKeyboard::keyD, withCapsLock);
        host.user.ungrab(XTestKeyboard::keyD, chordState);
        auto held = host.hold(controlOptionD);
        QVERIFY(held);
        QVERIFY(!host.user.grab(XTestKeyboard::keyD, chordState));
        held->reset();
        QTRY_VERIFY(host.user.grab(XTestKeyboard::keyD, chordState));
    }

    void locksDoNotMatterToAHotkey()
    {
        HotkeyHost host(true);
        const auto held = host.hold(controlOptionD);
        QVERIFY(held);
        constexpr quint8 caps = XTestKeyboard::capsLock;
        constexpr quint8 num = XTestKeyboard::numLock;
        for (const QList<quint8> &locks : {QList<quint8>{}, {caps}, {num}, {caps, num}}) {
            host.pressed.clear();
            host.user.tap(locks);
            host.press();
            host.user.tap(locks);
            QTRY_COMPARE(host.pressed.size(), 1);
            QTest::qWait(20); // else the next press looks like a repeat to the server's clock
        }
    }

    void otherModifiersAreNotTheHotkey()
    {
        HotkeyHost host(true);
        const auto held = host.hold(controlOptionD);
        const auto end = host.hold(f15, 2);
        QVERIFY(held && end);
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::keyD});
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::leftShift,
                       XTestKeyboard::keyD});
        host.user.tap({XTestKeyboard::pause});
        QTRY_COMPARE(host.pressed, QList<quint32>{2});
    }

    void aHeldHotkeyDoesNotRepeat()
    {
        HotkeyHost host(true);
        const auto held = host.hold(f15);
        QVERIFY(held);
        int presses = 0;
        int releases = 0;
        const QtX11Events events([&](const xcb_generic_event_t &event) {
            presses += eventType(event) == XCB_KEY_PRESS;
            releases += eventType(event) == XCB_KEY_RELEASE;
            return false;
        });
        host.user.press(XTestKeyboard::pause);
        QTRY_VERIFY(presses >= 4);
        host.user.release(XTestKeyboard::pause);
        QTRY_COMPARE(releases, presses);
        QCOMPARE(host.pressed.size(), 1);
        // The server's clock must move on, or this press looks like one more repeat.
        QTest::qWait(20);
        host.user.tap({XTestKeyboard::pause});
        QTRY_COMPARE(host.pressed.size(), 2);
    }

    void aNewLayoutAsksForNewHotkeys()
    {
        setLayout(u"us"_s);
        HotkeyHost host(true);
        auto held = host.hold(controlOptionA);
        QVERIFY(held);
        setLayout(u"fr"_s);
        QTRY_COMPARE(host.layoutChanges, 1);
        held->reset();
        held = host.hold(controlOptionA);
        QVERIFY(held);
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::keyQ});
        QTRY_COMPARE(host.pressed.size(), 1);
        setLayout(u"us"_s);
        QTRY_COMPARE(host.layoutChanges, 2);
    }

    void aSecondLayoutThatIsSwitchedOnDoesNotMatter()
    {
        setLayout(u"us,ru"_s, u"grp:caps_toggle"_s);
        HotkeyHost host(true);
        const auto held = host.hold(controlOptionD);
        QVERIFY(held);
        host.press();
        QTRY_COMPARE(host.pressed.size(), 1);
        QTest::qWait(20);
        host.user.tap({XTestKeyboard::capsLock});
        host.press();
        QTRY_COMPARE(host.pressed.size(), 2);
        host.user.tap({XTestKeyboard::capsLock});
        setLayout(u"us"_s);
    }

    void saysWhyThereIsNoHotkey()
    {
        QCOMPARE(errorText(HotkeyHost(true).hold({200, HotkeyChord::controlKey})),
                 u"当前键盘上没有 Ctrl+键 200"_s);
        X11HotkeyRegistrar registrar(nullptr);
        QCOMPARE(errorText(registrar.installHandler({})), u"当前会话不是 X11，无法使用全局快捷键"_s);
        QVERIFY(!registrar.registerHotkey(controlOptionD, 1));
    }

    void aHotkeyMayOutliveTheRegistrar()
    {
        auto host = std::make_unique<HotkeyHost>(true);
        auto held = host->hold(controlOptionD);
        QVERIFY(held);
        host.reset();
        XTestKeyboard other;
        QTRY_VERIFY(other.grab(XTestKeyboard::keyD, chordState));
        held->reset();
    }
};

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    KeyboardTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "KeyboardTest.moc"
