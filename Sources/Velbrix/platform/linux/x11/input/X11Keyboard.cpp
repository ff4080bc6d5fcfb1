#include "platform/linux/x11/input/X11Keyboard.h"

#include <utility>

namespace velbrix {
namespace {

// As the server describes it now; empty when it does not answer.
X11KeyMap readKeyMap(xcb_connection_t *connection)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const auto count = static_cast<quint8>(setup->max_keycode - setup->min_keycode + 1);
    const auto keysymsCookie = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
    const auto modifiersCookie = xcb_get_modifier_mapping(connection);
    const XReply<xcb_get_keyboard_mapping_reply_t> keysyms(
        xcb_get_keyboard_mapping_reply(connection, keysymsCookie, nullptr));
    const XReply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(connection, modifiersCookie, nullptr));
    if (!keysyms || !modifiers)
        return {};

    X11KeyMap map;
    map.firstKeycode = setup->min_keycode;
    map.keysymsPerKeycode = keysyms->keysyms_per_keycode;
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(keysyms.get());
    map.keysyms.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(keysyms.get()));
    const xcb_keycode_t *keycodes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    for (size_t row = 0; row < map.modifierKeycodes.size(); ++row) {
        const xcb_keycode_t *first = keycodes + row * modifiers->keycodes_per_modifier;
        map.modifierKeycodes[row].assign(first, first + modifiers->keycodes_per_modifier);
    }
    return map;
}

} // namespace

std::shared_ptr<X11Keyboard> X11Keyboard::ofQt()
{
    auto x11 = qtX11Connection();
    return x11 ? std::make_shared<X11Keyboard>(std::move(x11)) : nullptr;
}

X11Keyboard::X11Keyboard(std::unique_ptr<X11Connection> x11)
    : _x11(std::move(x11)),
      _map(readKeyMap(_x11->xcb())),
      _codes(_map),
      _events([this](const xcb_generic_event_t &event) { return handleEvent(event); })
{
    if (const auto xkb = _x11->extension("XKEYBOARD"))
        _xkbEvent = xkb->firstEvent;
}

const KeyCodes &X11Keyboard::codes()
{
    if (_isStale)
        refresh();
    return _codes;
}

bool X11Keyboard::handleEvent(const xcb_generic_event_t &event)
{
    const int kind = eventType(event);
    // Which of the two kinds a client gets depends on what Qt has asked for.
    constexpr quint8 newKeyboard = 0;
    constexpr quint8 mapChanged = 1;
    const bool isXkb = _xkbEvent != 0 && kind == _xkbEvent;
    if (kind == XCB_MAPPING_NOTIFY || (isXkb && (event.pad0 == newKeyboard || event.pad0 == mapChanged)))
        scheduleRefresh();
    return false;
}

void X11Keyboard::scheduleRefresh()
{
    if (std::exchange(_isStale, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (_isStale)
                refresh();
        },
        Qt::QueuedConnection);
}

void X11Keyboard::refresh()
{
    _isStale = false;
    X11KeyMap map = readKeyMap(_x11->xcb());
    if (map == _map)
        return;
    _map = std::move(map);
    _codes = KeyCodes(_map);
    // Never from inside codes(), whose caller is in the middle of something.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (const auto changed = _changed)
                changed();
        },
        Qt::QueuedConnection);
}

} // namespace velbrix
