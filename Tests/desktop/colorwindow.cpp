// colorwindow TITLE RRGGBB X Y WIDTH HEIGHT
// An ordinary window of one colour; writes its number when it is shown and ends when it is closed.
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

template <typename Reply> using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_atom_t atom(xcb_connection_t *x11, const char *name)
{
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const ReplyPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(x11, xcb_intern_atom(x11, 0, length, name), nullptr), &std::free);
    return reply ? reply->atom : XCB_ATOM_NONE;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 7)
        return 2;
    xcb_connection_t *const x11 = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(x11))
        return 1;
    const xcb_screen_t *const screen = xcb_setup_roots_iterator(xcb_get_setup(x11)).data;
    const auto number = [&](int index) { return std::atoi(argv[index]); };

    const xcb_window_t window = xcb_generate_id(x11);
    const std::uint32_t values[] = {static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 16)),
                                    XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(x11, XCB_COPY_FROM_PARENT, window, screen->root, static_cast<std::int16_t>(number(3)),
                      static_cast<std::int16_t>(number(4)), static_cast<std::uint16_t>(number(5)),
                      static_cast<std::uint16_t>(number(6)), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);

    const auto titleLength = static_cast<std::uint32_t>(std::strlen(argv[1]));
    xcb_change_property(x11, XCB_PROP_MODE_REPLACE, window, atom(x11, "_NET_WM_NAME"),
                        atom(x11, "UTF8_STRING"), 8, titleLength, argv[1]);
    xcb_change_property(x11, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, titleLength,
                        argv[1]);
    constexpr char className[] = "colorwindow\0Colorwindow";
    xcb_change_property(x11, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        sizeof className, className);
    // Position and size come from the user.
    const std::uint32_t hints[18] = {3};
    xcb_change_property(x11, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                        32, 18, hints);
    const xcb_atom_t close = atom(x11, "WM_DELETE_WINDOW");
    xcb_change_property(x11, XCB_PROP_MODE_REPLACE, window, atom(x11, "WM_PROTOCOLS"), XCB_ATOM_ATOM, 32, 1,
                        &close);
    xcb_map_window(x11, window);
    xcb_flush(x11);

    while (const ReplyPointer<xcb_generic_event_t> event{xcb_wait_for_event(x11), &std::free}) {
        const int type = event->response_type & 0x7F;
        if (type == XCB_MAP_NOTIFY) {
            std::printf("%u\n", window);
            std::fflush(stdout);
        }
        if (type == XCB_CLIENT_MESSAGE &&
            reinterpret_cast<const xcb_client_message_event_t *>(event.get())->data.data32[0] == close)
            break;
    }
    xcb_disconnect(x11);
    return 0;
}
