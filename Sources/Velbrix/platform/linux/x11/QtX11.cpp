#include "platform/linux/x11/QtX11.h"

#include <QGuiApplication>

namespace velbrix {

std::optional<QtX11Connection> qtX11Connection()
{
    const auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (!application)
        return std::nullopt;
    const auto *x11 = application->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection())
        return std::nullopt;
    QtX11Connection found;
    found.connection = x11->connection();
    found.root = xcb_setup_roots_iterator(xcb_get_setup(found.connection)).data->root;
    return found;
}

X11KeyMap readKeyMap(xcb_connection_t *connection)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const auto count = static_cast<quint8>(setup->max_keycode - setup->min_keycode + 1);
    const auto keysymsCookie = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
    const auto modifiersCookie = xcb_get_modifier_mapping(connection);
    const XcbReply<xcb_get_keyboard_mapping_reply_t> keysyms(
        xcb_get_keyboard_mapping_reply(connection, keysymsCookie, nullptr));
    const XcbReply<xcb_get_modifier_mapping_reply_t> modifiers(
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

xcb_atom_t internAtom(xcb_connection_t *connection, const QByteArray &name)
{
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<quint16>(name.size()), name.constData());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : XCB_ATOM_NONE;
}

} // namespace velbrix
