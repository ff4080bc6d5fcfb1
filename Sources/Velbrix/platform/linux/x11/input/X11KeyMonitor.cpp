#include "platform/linux/x11/input/X11KeyMonitor.h"

#include "foundation/HotkeyChord.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <bitset>
#include <optional>

#include <xcb/xinput.h>

using namespace Qt::StringLiterals;

namespace velbrix {

class X11KeyMonitor::LocalKeys final : public QObject {
public:
    explicit LocalKeys(std::shared_ptr<X11Keyboard> keyboard) : _keyboard(std::move(keyboard)) {}

    Observation observe(std::function<bool(const KeyPress &)> pressed, const std::weak_ptr<LocalKeys> &self)
    {
        if (_observers.isEmpty())
            QCoreApplication::instance()->installEventFilter(this);
        return _observers.add(std::move(pressed), [self] {
            const auto keys = self.lock();
            if (keys && keys->_observers.isEmpty() && QCoreApplication::instance())
                QCoreApplication::instance()->removeEventFilter(keys.get());
        });
    }

private:
    // What Qt delivers of one press, to the window, its focus widget and that
    // one's parents: the same moment and key each time.
    struct Delivery {
        quint64 timestamp = 0;
        quint32 scanCode = 0;
        int key = 0;
        bool operator==(const Delivery &) const = default;
    };

    bool eventFilter(QObject *, QEvent *event) override
    {
        const bool isOverride = event->type() == QEvent::ShortcutOverride;
        if (event->type() == QEvent::KeyRelease && event->spontaneous())
            _asked.reset();
        if (!event->spontaneous() || (!isOverride && event->type() != QEvent::KeyPress))
            return false;
        const auto *key = static_cast<const QKeyEvent *>(event);
        const Delivery delivery{key->timestamp(), key->nativeScanCode(), key->key()};
        if (_asked != delivery) {
            _asked = delivery;
            _isSwallowed = ask(*key);
        }
        // An accepted override keeps shortcuts from having the key; the press
        // that follows ends here.
        if (_isSwallowed)
            event->accept();
        return _isSwallowed;
    }

    bool ask(const QKeyEvent &event)
    {
        const auto press = translated(event);
        return press && _observers.ask(*press);
    }

    std::optional<KeyPress> translated(const QKeyEvent &event) const
    {
        std::optional<quint32> keyCode;
        if (_keyboard && event.nativeScanCode() < 256)
            keyCode = _keyboard->codes().fromX(static_cast<quint8>(event.nativeScanCode()));
        if (!keyCode)
            keyCode = KeyCodes::fromKeysym(event.nativeVirtualKey());
        if (!keyCode)
            return std::nullopt;
        quint32 modifiers = 0;
        if (event.modifiers() & Qt::ShiftModifier)
            modifiers |= HotkeyChord::shiftKey;
        if (event.modifiers() & Qt::ControlModifier)
            modifiers |= HotkeyChord::controlKey;
        if (event.modifiers() & Qt::AltModifier)
            modifiers |= HotkeyChord::optionKey;
        if (event.modifiers() & Qt::MetaModifier)
            modifiers |= HotkeyChord::cmdKey;
        return KeyPress{*keyCode, modifiers, event.isAutoRepeat()};
    }

    std::shared_ptr<X11Keyboard> _keyboard;
    ObserverList<bool(const KeyPress &)> _observers;
    std::optional<Delivery> _asked;
    bool _isSwallowed = false;
};

class X11KeyMonitor::RawKeys final {
public:
    explicit RawKeys(std::shared_ptr<X11Keyboard> keyboard) : _keyboard(std::move(keyboard)) {}
    ~RawKeys() { stop(); }
    RawKeys(const RawKeys &) = delete;
    RawKeys &operator=(const RawKeys &) = delete;

    Result<Observation> observe(std::function<void(const KeyPress &)> pressed,
                                const std::weak_ptr<RawKeys> &self)
    {
        if (!_events && !start())
            return failure(u"X 服务器不提供全局按键事件"_s);
        return _observers.add(std::move(pressed), [self] {
            const auto keys = self.lock();
            if (keys && keys->_observers.isEmpty())
                keys->stop();
        });
    }

private:
    bool start()
    {
        xcb_connection_t *const xcb = _keyboard->x11().xcb();
        const auto extension = _keyboard->x11().extension("XInputExtension");
        if (!extension)
            return false;
        _opcode = extension->opcode;
        // The server wants the version before anything else; Qt may have asked already.
        const XReply<xcb_input_xi_query_version_reply_t> version(
            xcb_input_xi_query_version_reply(xcb, xcb_input_xi_query_version(xcb, 2, 2), nullptr));
        if (!select(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE))
            return false;
        readHeldKeys();
        _events.emplace([this](const xcb_generic_event_t &event) { return handleEvent(event); });
        return true;
    }

    void stop()
    {
        if (!_events || !QCoreApplication::instance())
            return;
        _events.reset();
        select(0);
    }

    bool select(quint32 events) const
    {
        const struct {
            xcb_input_event_mask_t head;
            quint32 mask;
        } request{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events};
        const X11Connection &x11 = _keyboard->x11();
        return x11.isAccepted(xcb_input_xi_select_events_checked(x11.xcb(), x11.root(), 1, &request.head));
    }

    void readHeldKeys()
    {
        _held.reset();
        xcb_connection_t *const xcb = _keyboard->x11().xcb();
        const XReply<xcb_query_keymap_reply_t> reply(
            xcb_query_keymap_reply(xcb, xcb_query_keymap(xcb), nullptr));
        for (size_t keycode = 0; reply && keycode < _held.size(); ++keycode)
            _held[keycode] = (reply->keys[keycode / 8] >> (keycode % 8)) & 1;
    }

    // Never keeps an event from Qt.
    bool handleEvent(const xcb_generic_event_t &any)
    {
        const auto &event = reinterpret_cast<const xcb_ge_generic_event_t &>(any);
        if (event.response_type != XCB_GE_GENERIC || event.extension != _opcode)
            return false;
        const bool isPress = event.event_type == XCB_INPUT_RAW_KEY_PRESS;
        if (!isPress && event.event_type != XCB_INPUT_RAW_KEY_RELEASE)
            return false;
        const auto &raw = reinterpret_cast<const xcb_input_raw_key_press_event_t &>(any);
        if (raw.detail < _held.size()) {
            const bool wasHeld = _held[raw.detail];
            _held[raw.detail] = isPress;
            if (isPress)
                report(static_cast<quint8>(raw.detail),
                       wasHeld || (raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0);
        }
        return false;
    }

    void report(quint8 keycode, bool isRepeat)
    {
        const KeyCodes &codes = _keyboard->codes();
        const auto keyCode = codes.fromX(keycode);
        if (!keyCode)
            return;
        // Raw events carry no modifiers, and by now the user may have let them
        // go: what is held follows from the events themselves.
        quint16 state = 0;
        for (size_t held = 0; held < _held.size(); ++held) {
            if (_held[held])
                state |= codes.stateOfKey(static_cast<quint8>(held));
        }
        _observers.notify({*keyCode, codes.modifiersFromX(state), isRepeat});
    }

    std::shared_ptr<X11Keyboard> _keyboard;
    ObserverList<void(const KeyPress &)> _observers;
    std::bitset<256> _held;
    quint8 _opcode = 0;
    std::optional<QtX11Events> _events; // while it listens
};

X11KeyMonitor::X11KeyMonitor(std::shared_ptr<X11Keyboard> keyboard)
    : _local(std::make_shared<LocalKeys>(keyboard)),
      _raw(keyboard ? std::make_shared<RawKeys>(keyboard) : nullptr)
{
}

X11KeyMonitor::~X11KeyMonitor() = default;

Observation X11KeyMonitor::observeLocal(std::function<bool(const KeyPress &)> pressed)
{
    return _local->observe(std::move(pressed), _local);
}

Result<Observation> X11KeyMonitor::observeGlobal(std::function<void(const KeyPress &)> pressed)
{
    if (!_raw)
        return failure(u"当前会话不是 X11，无法监听其他程序的按键"_s);
    return _raw->observe(std::move(pressed), _raw);
}

} // namespace velbrix
