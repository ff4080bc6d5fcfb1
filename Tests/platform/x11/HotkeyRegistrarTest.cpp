#include "platform/linux/x11/input/X11HotkeyRegistrar.h"

#include "support/FakeHotkeyRegistrar.h"
#include "support/Test.h"
#include "support/XTestKeyboard.h"

#include <QProcess>

namespace {

constexpr HotkeyChord controlOptionD{2, HotkeyChord::controlKey | HotkeyChord::optionKey};
constexpr HotkeyChord controlOptionA{0, HotkeyChord::controlKey | HotkeyChord::optionKey};
constexpr HotkeyChord f15{113, 0}; // the Pause key
constexpr quint16 controlState = 1 << 2;
constexpr quint16 altState = 1 << 3;
constexpr quint16 chordState = controlState | altState;

class KeyEventCounter final : public QAbstractNativeEventFilter {
public:
    KeyEventCounter() { qApp->installNativeEventFilter(this); }
    ~KeyEventCounter() override { qApp->removeNativeEventFilter(this); }
    int presses = 0;
    int releases = 0;

private:
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        const auto kind = static_cast<xcb_generic_event_t *>(message)->response_type;
        presses += kind == XCB_KEY_PRESS;
        releases += kind == XCB_KEY_RELEASE;
        return false;
    }
};

// The fake or the real thing, with a user and another program around it.
struct Host {
    explicit Host(bool isReal)
    {
        if (isReal)
            real = std::make_unique<X11HotkeyRegistrar>(X11Keyboard::ofQt());
    }
    HotkeyRegistrar &registrar() { return real ? static_cast<HotkeyRegistrar &>(*real) : fake; }
    void press()
    {
        if (real)
            user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::keyD});
        else
            fake.press(controlOptionD);
    }
    void takeElsewhere()
    {
        fake.taken = {controlOptionD};
        QVERIFY(user.grab(XTestKeyboard::keyD, chordState));
    }
    void freeElsewhere()
    {
        fake.taken.clear();
        user.ungrab(XTestKeyboard::keyD, chordState);
    }

    XTestKeyboard user;
    FakeHotkeyRegistrar fake;
    std::unique_ptr<X11HotkeyRegistrar> real;
};

} // namespace

class HotkeyRegistrarTest : public QObject {
    Q_OBJECT

private:
    static void bothHosts()
    {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("fake") << false;
        QTest::newRow("x11") << true;
    }
    static void setLayout(const QString &layout)
    {
        QCOMPARE(QProcess::execute(u"setxkbmap"_s, {u"-layout"_s, layout}), 0);
    }

private Q_SLOTS:
    void pressCallsWithTheId_data() { bothHosts(); }
    void pressCallsWithTheId()
    {
        QFETCH(bool, isReal);
        Host host(isReal);
        QList<quint32> pressed;
        QVERIFY(host.registrar().installHandler({[&](quint32 id) { pressed.append(id); }, {}}));
        const auto first = host.registrar().registerHotkey(controlOptionD, 7);
        QVERIFY(first);
        const auto second = host.registrar().registerHotkey(controlOptionA, 8);
        QVERIFY(second);
        host.press();
        QTRY_COMPARE(pressed, QList<quint32>{7});
    }

    void aKeyOfAnotherProgramIsRefused_data() { bothHosts(); }
    void aKeyOfAnotherProgramIsRefused()
    {
        QFETCH(bool, isReal);
        Host host(isReal);
        QVERIFY(host.registrar().installHandler({}));
        host.takeElsewhere();
        const auto refused = host.registrar().registerHotkey(controlOptionD, 1);
        QVERIFY(!refused);
        QCOMPARE(refused.error().status, 10);
        QVERIFY(refused.error().message.contains(u"已被其他程序占用"_s));
        host.freeElsewhere();
        QVERIFY(host.registrar().registerHotkey(controlOptionD, 1));
    }

    void theSameChordTwiceIsRefused_data() { bothHosts(); }
    void theSameChordTwiceIsRefused()
    {
        QFETCH(bool, isReal);
        Host host(isReal);
        QVERIFY(host.registrar().installHandler({}));
        auto first = host.registrar().registerHotkey(controlOptionD, 1);
        QVERIFY(first);
        QVERIFY(!host.registrar().registerHotkey(controlOptionD, 2));
        first->reset();
        QVERIFY(host.registrar().registerHotkey(controlOptionD, 2));
    }

    void destroyingGivesTheKeyBack()
    {
        Host host(true);
        QVERIFY(host.registrar().installHandler({}));
        auto held = host.registrar().registerHotkey(controlOptionD, 1);
        QVERIFY(held);
        QVERIFY(!host.user.grab(XTestKeyboard::keyD, chordState));
        held->reset();
        QTRY_VERIFY(host.user.grab(XTestKeyboard::keyD, chordState));
    }

    void aPartialGrabIsUndone()
    {
        Host host(true);
        QVERIFY(host.registrar().installHandler({}));
        constexpr quint16 withCapsLock = chordState | 2;
        QVERIFY(host.user.grab(XTestKeyboard::keyD, withCapsLock));
        QVERIFY(!host.registrar().registerHotkey(controlOptionD, 1));
        QVERIFY(host.user.grab(XTestKeyboard::keyD, chordState));
    }

    void locksDoNotMatter_data()
    {
        QTest::addColumn<QList<quint8>>("locks");
        QTest::newRow("none") << QList<quint8>{};
        QTest::newRow("caps") << QList<quint8>{XTestKeyboard::capsLock};
        QTest::newRow("num") << QList<quint8>{XTestKeyboard::numLock};
        QTest::newRow("both") << QList<quint8>{XTestKeyboard::capsLock, XTestKeyboard::numLock};
    }
    void locksDoNotMatter()
    {
        QFETCH(QList<quint8>, locks);
        Host host(true);
        int pressed = 0;
        QVERIFY(host.registrar().installHandler({[&](quint32) { ++pressed; }, {}}));
        const auto held = host.registrar().registerHotkey(controlOptionD, 1);
        QVERIFY(held);
        for (const quint8 lock : locks)
            host.user.tap({lock});
        host.press();
        for (const quint8 lock : locks)
            host.user.tap({lock});
        QTRY_COMPARE(pressed, 1);
    }

    void otherModifiersDoNotFire()
    {
        Host host(true);
        QList<quint32> pressed;
        QVERIFY(host.registrar().installHandler({[&](quint32 id) { pressed.append(id); }, {}}));
        const auto held = host.registrar().registerHotkey(controlOptionD, 1);
        const auto end = host.registrar().registerHotkey(f15, 2);
        QVERIFY(held && end);
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::keyD});
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::leftShift,
                       XTestKeyboard::keyD});
        host.user.tap({XTestKeyboard::pause});
        QTRY_COMPARE(pressed, QList<quint32>{2});
    }

    void aHeldKeyDoesNotRepeat()
    {
        Host host(true);
        int pressed = 0;
        QVERIFY(host.registrar().installHandler({[&](quint32) { ++pressed; }, {}}));
        const auto held = host.registrar().registerHotkey(f15, 1);
        QVERIFY(held);
        KeyEventCounter counter;
        host.user.press(XTestKeyboard::pause);
        QTRY_VERIFY(counter.presses >= 4);
        host.user.release(XTestKeyboard::pause);
        QTRY_COMPARE(counter.releases, counter.presses);
        QCOMPARE(pressed, 1);
        // The server's clock must move on, or this press looks like one more repeat.
        QTest::qWait(20);
        host.user.tap({XTestKeyboard::pause});
        QTRY_COMPARE(pressed, 2);
    }

    void aNewLayoutAsksForNewRegistrations()
    {
        setLayout(u"us"_s);
        Host host(true);
        int changes = 0;
        int pressed = 0;
        QVERIFY(host.registrar().installHandler({[&](quint32) { ++pressed; }, [&] { ++changes; }}));
        auto held = host.registrar().registerHotkey(controlOptionA, 1);
        QVERIFY(held);
        setLayout(u"fr"_s);
        QTRY_COMPARE(changes, 1);
        held->reset();
        held = host.registrar().registerHotkey(controlOptionA, 1);
        QVERIFY(held);
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::keyQ});
        QTRY_COMPARE(pressed, 1);
        setLayout(u"us"_s);
        QTRY_COMPARE(changes, 2);
    }

    void aSecondLayoutThatIsSwitchedOnDoesNotMatter()
    {
        QCOMPARE(
            QProcess::execute(u"setxkbmap"_s, {u"-layout"_s, u"us,ru"_s, u"-option"_s, u"grp:caps_toggle"_s}),
            0);
        Host host(true);
        int pressed = 0;
        QVERIFY(host.registrar().installHandler({[&](quint32) { ++pressed; }, {}}));
        const auto held = host.registrar().registerHotkey(controlOptionD, 1);
        QVERIFY(held);
        host.press();
        QTRY_COMPARE(pressed, 1);
        QTest::qWait(20);
        host.user.tap({XTestKeyboard::capsLock});
        host.press();
        QTRY_COMPARE(pressed, 2);
        host.user.tap({XTestKeyboard::capsLock});
        QCOMPARE(QProcess::execute(u"setxkbmap"_s, {u"-layout"_s, u"us"_s, u"-option"_s}), 0);
    }

    void anUnknownKeyIsRefusedInWords()
    {
        Host host(true);
        QVERIFY(host.registrar().installHandler({}));
        const auto refused = host.registrar().registerHotkey({200, HotkeyChord::controlKey}, 1);
        QVERIFY(!refused);
        QCOMPARE(refused.error().message, u"当前键盘上没有 ⌃键 200"_s);
    }

    void withoutX11EveryActFails()
    {
        X11HotkeyRegistrar registrar(nullptr);
        QCOMPARE(registrar.installHandler({}).error().message, u"当前会话不是 X11，无法使用全局快捷键"_s);
        QVERIFY(!registrar.registerHotkey(controlOptionD, 1));
    }

    void aRegistrationMayOutliveTheRegistrar()
    {
        auto host = std::make_unique<Host>(true);
        auto held = host->registrar().registerHotkey(controlOptionD, 1);
        QVERIFY(held);
        host.reset();
        XTestKeyboard other;
        QTRY_VERIFY(other.grab(XTestKeyboard::keyD, chordState));
        held->reset();
    }
};

QTEST_MAIN(HotkeyRegistrarTest)
#include "HotkeyRegistrarTest.moc"
