#include "platform/linux/x11/input/X11KeyMonitor.h"

#include "foundation/HotkeyChord.h"
#include "support/FakeInput.h"
#include "support/Test.h"
#include "support/XTestKeyboard.h"

#include <QApplication>
#include <QLineEdit>
#include <QShortcut>

#include <xcb/xinput.h>

namespace {

constexpr quint32 keyD = 2;
constexpr quint32 f13 = 105;

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

} // namespace

class KeyMonitorTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<X11KeyMonitor> _monitor;
    std::unique_ptr<XTestKeyboard> _user;
    std::unique_ptr<QLineEdit> _field;

    void focusField()
    {
        _field = std::make_unique<QLineEdit>();
        _field->show();
        _field->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(_field->windowHandle()));
        QTRY_VERIFY(_field->hasFocus());
    }

private Q_SLOTS:
    void init()
    {
        _monitor = std::make_unique<X11KeyMonitor>(X11Keyboard::ofQt());
        _user = std::make_unique<XTestKeyboard>();
    }
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
        _user->tap({XTestKeyboard::print});
        // Let go long before the program looks.
        _user->tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::leftShift,
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
        QList<bool> local;
        QList<bool> global;
        const auto ours = _monitor->observeLocal([&](const KeyPress &key) {
            local.append(key.isRepeat);
            return false;
        });
        const auto all = _monitor->observeGlobal([&](const KeyPress &key) { global.append(key.isRepeat); });
        for (int presses = 0; presses < 2; ++presses) {
            local.clear();
            global.clear();
            _user->press(XTestKeyboard::keyD);
            QTRY_VERIFY(local.size() >= 3);
            _user->release(XTestKeyboard::keyD);
            _user->sync();
            QTest::qWait(20); // what was pressed before comes in
            QCOMPARE(local, QList<bool>{false} + QList<bool>(local.size() - 1, true));
            QCOMPARE(global, QList<bool>{false} + QList<bool>(global.size() - 1, true));
        }
    }

    void knowsModifiersHeldFromBefore()
    {
        _user->press(XTestKeyboard::leftControl);
        _user->sync();
        QList<KeyPress> keys;
        const auto watch = _monitor->observeGlobal([&](const KeyPress &key) { keys.append(key); });
        _user->tap({XTestKeyboard::print});
        _user->release(XTestKeyboard::leftControl);
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
                _user->tap({XTestKeyboard::keyD});
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
        _user->tap({XTestKeyboard::leftControl, XTestKeyboard::keyD});
        _user->tap({XTestKeyboard::keyD});
        _user->tap({XTestKeyboard::keyA});
        QTRY_COMPARE(_field->text(), u"a"_s);
        QCOMPARE(swallowed, 2);
        QCOMPARE(triggered, 0);
        watch.reset();
        _user->tap({XTestKeyboard::leftControl, XTestKeyboard::keyD});
        QTRY_COMPARE(triggered, 1);
        QCOMPARE(swallowed, 2);
    }

    void withoutX11GlobalKeysFailInWords()
    {
        X11KeyMonitor monitor(nullptr);
        QCOMPARE(errorText(monitor.observeGlobal([](const KeyPress &) {})),
                 u"当前会话不是 X11，无法监听其他程序的按键"_s);
    }
};

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    KeyMonitorTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "KeyMonitorTest.moc"
