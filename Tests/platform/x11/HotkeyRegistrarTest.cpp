#include "platform/linux/x11/input/X11HotkeyRegistrar.h"

#include "support/FakeInput.h"
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
    QList<quint32> pressed;
    int layoutChanges = 0;
};

} // namespace

class HotkeyRegistrarTest : public QObject {
    Q_OBJECT

private:
    static void setLayout(const QString &layout, const QString &option = {})
    {
        QCOMPARE(QProcess::execute(u"setxkbmap"_s, {u"-layout"_s, layout, u"-option"_s, option}), 0);
    }

private Q_SLOTS:
    void pressCallsWithTheId_data() { fakeAndReal(); }
    void pressCallsWithTheId()
    {
        QFETCH(bool, isReal);
        Host host(isReal);
        const auto first = host.hold(controlOptionD, 7);
        const auto second = host.hold(controlOptionA, 8);
        QVERIFY(first && second);
        host.press();
        QTRY_COMPARE(host.pressed, QList<quint32>{7});
    }

    void aTakenKeyIsRefused_data() { fakeAndReal(); }
    void aTakenKeyIsRefused()
    {
        QFETCH(bool, isReal);
        Host host(isReal);
        host.takeElsewhere();
        const auto refused = host.hold(controlOptionD);
        QVERIFY(!refused);
        QCOMPARE(refused.error().status, 10);
        QVERIFY(refused.error().message.contains(u"已被其他程序占用"_s));
        host.freeElsewhere();
        auto first = host.hold(controlOptionD);
        QVERIFY(first);
        QVERIFY(!host.hold(controlOptionD, 2)); // by this program itself
        first->reset();
        QVERIFY(host.hold(controlOptionD, 2));
    }

    void destroyingGivesTheKeyBack()
    {
        Host host(true);
        auto held = host.hold(controlOptionD);
        QVERIFY(held);
        QVERIFY(!host.user.grab(XTestKeyboard::keyD, chordState));
        held->reset();
        QTRY_VERIFY(host.user.grab(XTestKeyboard::keyD, chordState));
    }

    void aPartialGrabIsUndone()
    {
        Host host(true);
        constexpr quint16 withCapsLock = chordState | 2;
        QVERIFY(host.user.grab(XTestKeyboard::keyD, withCapsLock));
        QVERIFY(!host.hold(controlOptionD));
        QVERIFY(host.user.grab(XTestKeyboard::keyD, chordState));
    }

    void locksDoNotMatter()
    {
        Host host(true);
        const auto held = host.hold(controlOptionD);
        QVERIFY(held);
        constexpr quint8 caps = XTestKeyboard::capsLock;
        constexpr quint8 num = XTestKeyboard::numLock;
        for (const QList<quint8> &locks : {QList<quint8>{}, {caps}, {num}, {caps, num}}) {
            host.pressed.clear();
            for (const quint8 lock : locks)
                host.user.tap({lock});
            host.press();
            for (const quint8 lock : locks)
                host.user.tap({lock});
            QTRY_COMPARE(host.pressed.size(), 1);
            QTest::qWait(20); // else the next press looks like a repeat to the server's clock
        }
    }

    void otherModifiersDoNotFire()
    {
        Host host(true);
        const auto held = host.hold(controlOptionD);
        const auto end = host.hold(f15, 2);
        QVERIFY(held && end);
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::keyD});
        host.user.tap({XTestKeyboard::leftControl, XTestKeyboard::leftAlt, XTestKeyboard::leftShift,
                       XTestKeyboard::keyD});
        host.user.tap({XTestKeyboard::pause});
        QTRY_COMPARE(host.pressed, QList<quint32>{2});
    }

    void aHeldKeyDoesNotRepeat()
    {
        Host host(true);
        const auto held = host.hold(f15);
        QVERIFY(held);
        KeyEventCounter counter;
        host.user.press(XTestKeyboard::pause);
        QTRY_VERIFY(counter.presses >= 4);
        host.user.release(XTestKeyboard::pause);
        QTRY_COMPARE(counter.releases, counter.presses);
        QCOMPARE(host.pressed.size(), 1);
        // The server's clock must move on, or this press looks like one more repeat.
        QTest::qWait(20);
        host.user.tap({XTestKeyboard::pause});
        QTRY_COMPARE(host.pressed.size(), 2);
    }

    void aNewLayoutAsksForNewRegistrations()
    {
        setLayout(u"us"_s);
        Host host(true);
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
        Host host(true);
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
        QCOMPARE(errorText(Host(true).hold({200, HotkeyChord::controlKey})), u"当前键盘上没有 ⌃键 200"_s);
        X11HotkeyRegistrar registrar(nullptr);
        QCOMPARE(errorText(registrar.installHandler({})), u"当前会话不是 X11，无法使用全局快捷键"_s);
        QVERIFY(!registrar.registerHotkey(controlOptionD, 1));
    }

    void aRegistrationMayOutliveTheRegistrar()
    {
        auto host = std::make_unique<Host>(true);
        auto held = host->hold(controlOptionD);
        QVERIFY(held);
        host.reset();
        XTestKeyboard other;
        QTRY_VERIFY(other.grab(XTestKeyboard::keyD, chordState));
        held->reset();
    }
};

QTEST_MAIN(HotkeyRegistrarTest)
#include "HotkeyRegistrarTest.moc"
