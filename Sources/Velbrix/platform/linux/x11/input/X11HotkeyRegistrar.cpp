#include "platform/linux/x11/input/X11HotkeyRegistrar.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

struct Grab {
    quint32 id = 0;
    QList<quint8> keycodes;
    quint16 state = 0; // of the chord's modifiers
    QList<quint16> lockCombinations;
};

} // namespace

class X11HotkeyRegistrar::Grabs final {
public:
    explicit Grabs(std::shared_ptr<X11Keyboard> keyboard)
        : _keyboard(std::move(keyboard)),
          _events([this](const xcb_generic_event_t &event) { return handleEvent(event); })
    {
    }
    ~Grabs()
    {
        // The connection and its grabs end with the application.
        if (!QCoreApplication::instance())
            return;
        for (const Grab &grab : _grabs)
            ungrab(grab);
    }
    Grabs(const Grabs &) = delete;
    Grabs &operator=(const Grabs &) = delete;

    std::function<void(quint32 id)> pressed;

    bool isOurs(const Grab &wanted) const
    {
        return std::ranges::any_of(_grabs, [&](const Grab &grab) {
            return grab.state == wanted.state && std::ranges::any_of(wanted.keycodes, [&](quint8 keycode) {
                       return grab.keycodes.contains(keycode);
                   });
        });
    }

    // The server's error number; 0 when the whole grab succeeded. Otherwise
    // nothing of it remains.
    int add(const Grab &grab)
    {
        const X11Connection &x11 = _keyboard->x11();
        QList<xcb_void_cookie_t> cookies;
        forEachVariant(grab, [&](quint8 keycode, quint16 state) {
            cookies.append(xcb_grab_key_checked(x11.xcb(), 0, x11.root(), state, keycode, XCB_GRAB_MODE_ASYNC,
                                                XCB_GRAB_MODE_ASYNC));
        });
        int status = 0;
        for (const xcb_void_cookie_t cookie : std::as_const(cookies)) {
            const int error = x11.error(cookie);
            status = status == 0 ? error : status;
        }
        if (status != 0)
            ungrab(grab);
        else
            _grabs.append(grab);
        return status;
    }

    void remove(quint32 id)
    {
        const auto it = std::ranges::find(_grabs, id, &Grab::id);
        if (it == _grabs.end())
            return;
        ungrab(*it);
        _grabs.erase(it);
    }

private:
    template <typename Call> static void forEachVariant(const Grab &grab, Call call)
    {
        for (const quint8 keycode : grab.keycodes) {
            for (const quint16 locks : grab.lockCombinations)
                call(keycode, static_cast<quint16>(grab.state | locks));
        }
    }

    void ungrab(const Grab &grab) const
    {
        X11Connection &x11 = _keyboard->x11();
        forEachVariant(grab, [&](quint8 keycode, quint16 state) {
            xcb_ungrab_key(x11.xcb(), keycode, x11.root(), state);
        });
        x11.flush();
    }

    bool handleEvent(const xcb_generic_event_t &event)
    {
        // The top bit marks events that another program has made up; none matches here.
        const auto kind = event.response_type;
        if (kind != XCB_KEY_PRESS && kind != XCB_KEY_RELEASE)
            return false;
        const auto &key = reinterpret_cast<const xcb_key_press_event_t &>(event);
        if (key.event != _keyboard->x11().root())
            return false;
        if (kind == XCB_KEY_RELEASE)
            _lastRelease = {key.detail, key.time};
        else if (!isRepeat(key))
            press(key.detail, key.state);
        return true;
    }

    // The server repeats a held key by letting it go and pressing it at the
    // same instant, some time after the press before; a program that types may
    // do all of it in one instant.
    bool isRepeat(const xcb_key_press_event_t &key)
    {
        const xcb_timestamp_t before = std::exchange(_lastPress, key.time);
        return _lastRelease == std::pair(key.detail, key.time) && before != key.time;
    }

    void press(quint8 keycode, quint16 state) const
    {
        const auto chordState = static_cast<quint16>(state & _keyboard->codes().chordState());
        const auto it = std::ranges::find_if(_grabs, [&](const Grab &grab) {
            return grab.state == chordState && grab.keycodes.contains(keycode);
        });
        if (it == _grabs.end() || !pressed)
            return;
        const quint32 id = it->id;
        const auto call = pressed;
        call(id);
    }

    std::shared_ptr<X11Keyboard> _keyboard;
    QList<Grab> _grabs;
    std::pair<xcb_keycode_t, xcb_timestamp_t> _lastRelease{0, 0};
    xcb_timestamp_t _lastPress = 0;
    const QtX11Events _events;
};

class X11HotkeyRegistrar::Registration final : public HotkeyRegistration {
public:
    Registration(const std::shared_ptr<Grabs> &grabs, quint32 id) : _grabs(grabs), _id(id) {}
    ~Registration() override
    {
        if (const auto grabs = _grabs.lock())
            grabs->remove(_id);
    }

private:
    std::weak_ptr<Grabs> _grabs;
    quint32 _id;
};

X11HotkeyRegistrar::X11HotkeyRegistrar(std::shared_ptr<X11Keyboard> keyboard)
    : _keyboard(std::move(keyboard)), _grabs(_keyboard ? std::make_shared<Grabs>(_keyboard) : nullptr)
{
}

X11HotkeyRegistrar::~X11HotkeyRegistrar()
{
    if (_keyboard)
        _keyboard->setChangeHandler({});
}

std::expected<void, HotkeyFailure> X11HotkeyRegistrar::installHandler(Handlers handlers)
{
    if (!_grabs)
        return std::unexpected(HotkeyFailure{0, u"当前会话不是 X11，无法使用全局快捷键"_s});
    _grabs->pressed = std::move(handlers.pressed);
    _keyboard->setChangeHandler(std::move(handlers.keyboardChanged));
    return {};
}

std::expected<std::unique_ptr<HotkeyRegistration>, HotkeyFailure>
X11HotkeyRegistrar::registerHotkey(const HotkeyChord &chord, quint32 id)
{
    if (!_grabs)
        return std::unexpected(HotkeyFailure{0, u"当前会话不是 X11，无法使用全局快捷键"_s});
    const QString name = chord.displayText(KeyNotation::words);
    const KeyCodes &codes = _keyboard->codes();
    const auto state = codes.modifiersToX(chord.modifiers);
    const Grab grab{id, codes.toX(chord.keyCode), state.value_or(0), codes.lockCombinations()};
    if (!state || grab.keycodes.isEmpty())
        return std::unexpected(HotkeyFailure{XCB_VALUE, u"当前键盘上没有 "_s + name});
    if (_grabs->isOurs(grab))
        return std::unexpected(HotkeyFailure{XCB_ACCESS, name + u" 已用于另一项功能"_s});
    if (const int status = _grabs->add(grab); status != 0) {
        return std::unexpected(HotkeyFailure{
            status, status == XCB_ACCESS ? name + u" 已被其他程序占用"_s
                                         : u"系统拒绝了 %1（错误 %2）"_s.arg(name).arg(status)});
    }
    return std::make_unique<Registration>(_grabs, id);
}

} // namespace velbrix
