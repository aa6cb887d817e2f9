#include "app/tray/XcbTray.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <array>
#include <cstring>

namespace vellumine::xcb {
namespace {

/// A property of one number.
std::optional<std::uint32_t> number(Window window, Atom property, Atom type)
{
    const Answer<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection(), xcb_get_property(connection(), 0, window, property, type, 0, 1), nullptr));
    std::uint32_t value = 0;
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof value) {
        return std::nullopt;
    }
    std::memcpy(&value, xcb_get_property_value(reply.get()), sizeof value);
    return value;
}

Window parent(Window window)
{
    const Answer<xcb_query_tree_reply_t> reply(
        xcb_query_tree_reply(connection(), xcb_query_tree(connection(), window), nullptr));
    return reply ? reply->parent : noWindow;
}

} // namespace

Atoms atoms()
{
    return {
        .trayOwner = atom("_NET_SYSTEM_TRAY_S0"),
        .trayOpcode = atom("_NET_SYSTEM_TRAY_OPCODE"),
        .trayVisual = atom("_NET_SYSTEM_TRAY_VISUAL"),
        .manager = atom("MANAGER"),
        .embedInfo = atom("_XEMBED_INFO"),
        .opacity = atom("_NET_WM_WINDOW_OPACITY"),
        .dragSelection = atom("XdndSelection"),
    };
}

Window trayOwner(const Atoms& atoms)
{
    return selectionOwner(atoms.trayOwner);
}

bool trayWantsAlpha(const Atoms& atoms, Window tray)
{
    const auto wanted = number(tray, atoms.trayVisual, XCB_ATOM_VISUALID);
    if (!wanted) {
        return false;
    }
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen()); depth.rem > 0;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == *wanted) {
                return depth.data->depth == 32;
            }
        }
    }
    return false;
}

void listenToStructure(Window window)
{
    const Answer<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection(), xcb_get_window_attributes(connection(), window), nullptr));
    if (reply) {
        const std::uint32_t mask = reply->your_event_mask | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection(), window, XCB_CW_EVENT_MASK, &mask);
    }
}

std::optional<std::uint8_t> listenToDrags(const Atoms& atoms)
{
    const auto* extension = xcb_get_extension_data(connection(), &xcb_xfixes_id);
    if (!extension || !extension->present) {
        return std::nullopt;
    }
    // The server answers to no other request of the extension before this one.
    const Answer<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection(), xcb_xfixes_query_version(connection(), 5, 0), nullptr));
    if (!version) {
        return std::nullopt;
    }
    xcb_xfixes_select_selection_input(connection(), rootWindow(), atoms.dragSelection,
        XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
    return static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
}

void requestDock(const Atoms& atoms, Window tray, Window item)
{
    constexpr std::array<std::uint32_t, 2> info { 0, 1 }; // version 0 of XEmbed; to be mapped
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, item, atoms.embedInfo, atoms.embedInfo,
        32, info.size(), info.data());

    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = tray;
    message.type = atoms.trayOpcode;
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = 0; // SYSTEM_TRAY_REQUEST_DOCK
    message.data.data32[2] = item;
    std::array<char, sizeof message> bytes {};
    std::memcpy(bytes.data(), &message, sizeof message);
    xcb_send_event(connection(), 0, tray, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    xcb_flush(connection());
}

bool isInvisiblyEmbedded(const Atoms& atoms, Window window)
{
    for (; window != noWindow && window != rootWindow(); window = parent(window)) {
        if (number(window, atoms.opacity, XCB_ATOM_CARDINAL) == 0U) {
            return true;
        }
    }
    return false;
}

std::optional<QRect> screenGeometry(Window window)
{
    const Answer<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(connection(),
            xcb_translate_coordinates(connection(), window, rootWindow(), 0, 0), nullptr));
    const Answer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection(), xcb_get_geometry(connection(), window), nullptr));
    if (!origin || !geometry) {
        return std::nullopt;
    }
    return QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
}

bool isButtonDown()
{
    const Answer<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection(), xcb_query_pointer(connection(), rootWindow()), nullptr));
    constexpr unsigned buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    return reply && (reply->mask & buttons) != 0;
}

} // namespace vellumine::xcb
