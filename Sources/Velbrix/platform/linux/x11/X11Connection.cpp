#include "platform/linux/x11/X11Connection.h"

#include "platform/linux/x11/XGeometry.h"

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace velbrix {

std::uint32_t XProperty::value(int index) const
{
    std::uint32_t number = 0;
    if (index < count())
        std::memcpy(&number, bytes.constData() + qsizetype{index} * 4, 4);
    return number;
}

std::vector<std::uint32_t> XProperty::values() const
{
    std::vector<std::uint32_t> all(static_cast<std::size_t>(count()));
    for (std::size_t index = 0; index < all.size(); ++index)
        all[index] = value(static_cast<int>(index));
    return all;
}

bool XProperty::holds(std::uint32_t wanted) const
{
    for (int index = 0; index < count(); ++index) {
        if (value(index) == wanted)
            return true;
    }
    return false;
}

Result<std::unique_ptr<X11Connection>> X11Connection::open(const X11Abilities &allowed)
{
    int screenNumber = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        return failure(u"无法连接 X 服务器"_s);
    }
    std::unique_ptr<X11Connection> opened(new X11Connection(connection, screenNumber, allowed, true));
    if (!opened->_screen)
        return failure(u"X 服务器没有屏幕"_s);
    opened->negotiate();
    return opened;
}

std::unique_ptr<X11Connection> X11Connection::borrow(xcb_connection_t *connection)
{
    const X11Abilities none{.sharedMemory = false,
                            .sharedDescriptors = false,
                            .composite = false,
                            .damage = false,
                            .fixes = false,
                            .randr = false,
                            .render = false,
                            .shape = false};
    return std::unique_ptr<X11Connection>(new X11Connection(connection, 0, none, false));
}

X11Connection::X11Connection(xcb_connection_t *connection, int screenNumber, const X11Abilities &allowed,
                             bool isOwn)
    : _connection(connection), _screenNumber(screenNumber), _isOwn(isOwn), _has(allowed)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    if (screens.rem > 0)
        _screen = screens.data;
}

X11Connection::~X11Connection()
{
    if (_isOwn)
        xcb_disconnect(_connection);
}

bool X11Connection::isPresent(xcb_extension_t &extension) const
{
    const auto *data = xcb_get_extension_data(_connection, &extension);
    return data && data->present;
}

// Some extensions refuse to work before the client has said which version it
// speaks.
void X11Connection::negotiate()
{
    for (auto *extension : {&xcb_shm_id, &xcb_composite_id, &xcb_damage_id, &xcb_xfixes_id, &xcb_randr_id,
                            &xcb_render_id, &xcb_shape_id})
        xcb_prefetch_extension_data(_connection, extension);

    _has.sharedMemory = _has.sharedMemory && isPresent(xcb_shm_id);
    if (_has.sharedMemory) {
        const XReply<xcb_shm_query_version_reply_t> version(
            xcb_shm_query_version_reply(_connection, xcb_shm_query_version(_connection), nullptr));
        const bool takesDescriptors =
            version &&
            (version->major_version > 1 || (version->major_version == 1 && version->minor_version >= 2));
        _has.sharedDescriptors = _has.sharedDescriptors && takesDescriptors;
    }
    _has.fixes = _has.fixes && isPresent(xcb_xfixes_id);
    if (_has.fixes) {
        const XReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
            _connection, xcb_xfixes_query_version(_connection, 5, 0), nullptr));
        _has.fixes = version && version->major_version >= 2;
        _fixesEvent = xcb_get_extension_data(_connection, &xcb_xfixes_id)->first_event;
    }
    _has.composite = _has.composite && isPresent(xcb_composite_id);
    if (_has.composite) {
        const XReply<xcb_composite_query_version_reply_t> version(xcb_composite_query_version_reply(
            _connection, xcb_composite_query_version(_connection, 0, 4), nullptr));
        _has.composite = version && (version->major_version > 0 || version->minor_version >= 2);
    }
    // What was damaged is read as a region, which belongs to the fixes.
    _has.damage = _has.damage && _has.fixes && isPresent(xcb_damage_id);
    if (_has.damage) {
        const XReply<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
            _connection, xcb_damage_query_version(_connection, 1, 1), nullptr));
        _has.damage = version != nullptr;
        _damageEvent = xcb_get_extension_data(_connection, &xcb_damage_id)->first_event;
    }
    _has.randr = _has.randr && isPresent(xcb_randr_id);
    if (_has.randr) {
        const XReply<xcb_randr_query_version_reply_t> version(
            xcb_randr_query_version_reply(_connection, xcb_randr_query_version(_connection, 1, 5), nullptr));
        _has.randr = version && (version->major_version > 1 || version->minor_version >= 5);
        _randrEvent = xcb_get_extension_data(_connection, &xcb_randr_id)->first_event;
    }
    _has.render = _has.render && isPresent(xcb_render_id);
    if (_has.render) {
        const XReply<xcb_render_query_version_reply_t> version(xcb_render_query_version_reply(
            _connection, xcb_render_query_version(_connection, 0, 11), nullptr));
        _has.render = version != nullptr;
    }
    _has.shape = _has.shape && isPresent(xcb_shape_id);
}

bool X11Connection::hasTrueColor() const
{
    const xcb_setup_t *setup = xcb_get_setup(_connection);
    if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
        return false;
    bool fourBytes = false;
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem; xcb_format_next(&format))
        fourBytes =
            fourBytes || (format.data->depth == _screen->root_depth && format.data->bits_per_pixel == 32);
    for (auto depth = xcb_screen_allowed_depths_iterator(_screen); depth.rem; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem; xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == _screen->root_visual)
                return fourBytes && visual.data->red_mask == 0xff0000 && visual.data->green_mask == 0xff00 &&
                       visual.data->blue_mask == 0xff;
        }
    }
    return false;
}

std::optional<X11Extension> X11Connection::extension(const char *name) const
{
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const XReply<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(_connection, xcb_query_extension(_connection, length, name), nullptr));
    if (!reply || !reply->present)
        return std::nullopt;
    return X11Extension{reply->major_opcode, reply->first_event};
}

xcb_atom_t X11Connection::atom(const char *name)
{
    if (const auto known = _atoms.find(name); known != _atoms.end())
        return known->second;
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const XReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(_connection, xcb_intern_atom(_connection, 0, length, name), nullptr));
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    _atoms.emplace(name, atom);
    return atom;
}

QByteArray X11Connection::atomName(xcb_atom_t atom) const
{
    const XReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(_connection, xcb_get_atom_name(_connection, atom), nullptr));
    return reply ? QByteArray(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()))
                 : QByteArray();
}

XProperty X11Connection::property(xcb_window_t window, const char *name, std::uint32_t maximumBytes)
{
    const auto cookie = xcb_get_property(_connection, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0,
                                         (maximumBytes + 3) / 4);
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(_connection, cookie, nullptr));
    if (!reply)
        return {};
    return {reply->type, QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                                    xcb_get_property_value_length(reply.get()))};
}

void X11Connection::setProperty(xcb_window_t window, const char *name, xcb_atom_t type,
                                std::span<const std::uint32_t> values)
{
    xcb_change_property(_connection, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
}

XReply<xcb_get_geometry_reply_t> X11Connection::geometry(xcb_drawable_t drawable) const
{
    return XReply<xcb_get_geometry_reply_t>(
        xcb_get_geometry_reply(_connection, xcb_get_geometry(_connection, drawable), nullptr));
}

void X11Connection::putImage(xcb_drawable_t target, xcb_gcontext_t context, QSize size,
                             const std::uint8_t *pixels)
{
    constexpr std::size_t header = 64; // of a request, rounded up
    const std::size_t row = static_cast<std::size_t>(size.width()) * 4;
    const std::size_t room = std::size_t{xcb_get_maximum_request_length(_connection)} * 4 - header;
    const int rows = std::max(1, static_cast<int>(room / row));
    for (int y = 0; y < size.height(); y += rows) {
        const int count = std::min(rows, size.height() - y);
        xcb_put_image(_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, target, context, toXLength(size.width()),
                      toXLength(count), 0, toXPlace(y), 0, _screen->root_depth,
                      static_cast<std::uint32_t>(row * static_cast<std::size_t>(count)),
                      pixels + row * static_cast<std::size_t>(y));
    }
}

void X11Connection::selectEvents(xcb_window_t window, std::uint32_t mask) const
{
    xcb_change_window_attributes(_connection, window, XCB_CW_EVENT_MASK, &mask);
}

std::uint32_t X11Connection::pictureFormat(xcb_visualid_t visual)
{
    if (_pictureFormats.empty() && _has.render) {
        const XReply<xcb_render_query_pict_formats_reply_t> formats(xcb_render_query_pict_formats_reply(
            _connection, xcb_render_query_pict_formats(_connection), nullptr));
        auto screens = formats ? xcb_render_query_pict_formats_screens_iterator(formats.get())
                               : xcb_render_pictscreen_iterator_t{};
        for (; screens.rem; xcb_render_pictscreen_next(&screens)) {
            auto depths = xcb_render_pictscreen_depths_iterator(screens.data);
            for (; depths.rem; xcb_render_pictdepth_next(&depths)) {
                auto visuals = xcb_render_pictdepth_visuals_iterator(depths.data);
                for (; visuals.rem; xcb_render_pictvisual_next(&visuals))
                    _pictureFormats.emplace(visuals.data->visual, visuals.data->format);
            }
        }
    }
    const auto known = _pictureFormats.find(visual);
    return known == _pictureFormats.end() ? 0 : known->second;
}

int X11Connection::error(xcb_void_cookie_t request) const
{
    const XReply<xcb_generic_error_t> error(xcb_request_check(_connection, request));
    return error ? error->error_code : 0;
}

bool X11Connection::hasCompositingManager()
{
    const std::string name = "_NET_WM_CM_S" + std::to_string(_screenNumber);
    const XReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        _connection, xcb_get_selection_owner(_connection, atom(name.c_str())), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

XReply<xcb_generic_event_t> X11Connection::nextEvent()
{
    return XReply<xcb_generic_event_t>(xcb_poll_for_event(_connection));
}

void X11Connection::sync()
{
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(_connection, xcb_get_input_focus(_connection), nullptr));
}

} // namespace velbrix
