#include "app/x11/XcbConnection.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

namespace vellumine::xcb {

xcb_connection_t* connection()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

const xcb_screen_t& screen()
{
    return *xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
}

Window rootWindow()
{
    return screen().root;
}

Atom atom(std::string_view name)
{
    const Answer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection(),
        xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : static_cast<Atom>(XCB_ATOM_NONE);
}

Window selectionOwner(Atom selection)
{
    const Answer<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection(), xcb_get_selection_owner(connection(), selection), nullptr));
    return reply ? reply->owner : noWindow;
}

void setGround(Window window, std::uint32_t pixel)
{
    xcb_change_window_attributes(connection(), window, XCB_CW_BACK_PIXEL, &pixel);
}

bool isComposited()
{
    return selectionOwner(atom("_NET_WM_CM_S0")) != noWindow;
}

} // namespace vellumine::xcb
