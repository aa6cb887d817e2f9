#include "app/windows/WindowActivation.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace vellumine {
namespace {

xcb_connection_t* connection()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t* server, std::string_view name)
{
    const auto freeing = [](xcb_intern_atom_reply_t* reply) {
        std::free(reply); // NOLINT(*-no-malloc)
    };
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(freeing)> reply(
        xcb_intern_atom_reply(server,
            xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr),
        freeing);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

xcb_window_t rootWindow(xcb_connection_t* server)
{
    return xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
}

void sendToRoot(
    xcb_connection_t* server, const xcb_client_message_event_t& message, std::uint32_t audience)
{
    std::array<char, sizeof message> bytes {};
    std::memcpy(bytes.data(), &message, sizeof message);
    xcb_send_event(server, 0, rootWindow(server), audience, bytes.data());
}

/// Asks the window manager with the time of the user's action: with our own last one, which may be
/// long ago, it would only make the window blink.
void activateSince(xcb_connection_t* server, xcb_window_t window, std::uint32_t time)
{
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window, atom(server, "_NET_WM_USER_TIME"),
        XCB_ATOM_CARDINAL, 32, 1, &time);
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(server, "_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 1; // an application asks
    message.data.data32[1] = time;
    sendToRoot(
        server, message, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

/// Tells whoever shows a busy pointer that the start is over. The text travels in pieces.
void endStartup(xcb_connection_t* server, xcb_window_t window, const QByteArray& startupId)
{
    QByteArray quoted = startupId;
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    const QByteArray text = "remove: ID=\"" + quoted + '"';
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = window;
    message.type = atom(server, "_NET_STARTUP_INFO_BEGIN");
    constexpr qsizetype piece = sizeof message.data.data8;
    // The zero at its end travels with the text.
    for (qsizetype start = 0; start < text.size() + 1; start += piece) {
        std::memset(&message.data, 0, sizeof message.data);
        std::memcpy(message.data.data8, text.constData() + start,
            static_cast<std::size_t>(std::min(piece, text.size() + 1 - start)));
        sendToRoot(server, message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = atom(server, "_NET_STARTUP_INFO");
    }
}

} // namespace

std::optional<std::uint32_t> timeOfStartup(const QByteArray& startupId)
{
    constexpr std::string_view mark = "_TIME";
    const qsizetype position = startupId.lastIndexOf(mark.data());
    if (position < 0) {
        return std::nullopt;
    }
    bool isNumber = false;
    const std::uint32_t time
        = startupId.mid(position + static_cast<qsizetype>(mark.size())).toUInt(&isNumber);
    return isNumber ? std::optional(time) : std::nullopt;
}

void bringToFront(QWindow& window, const ActivationToken& token)
{
    if (!token.activationToken.isEmpty()) {
        // Where Qt looks for it when it activates a window the next time.
        qputenv("XDG_ACTIVATION_TOKEN", token.activationToken);
    }
    if (window.windowState() == Qt::WindowMinimized) {
        window.showNormal();
    } else {
        window.show();
    }
    window.raise();
    window.requestActivate();

    xcb_connection_t* server = connection();
    if (!server || token.startupId.isEmpty()) {
        return;
    }
    const auto id = static_cast<xcb_window_t>(window.winId());
    if (const auto time = timeOfStartup(token.startupId)) {
        activateSince(server, id, *time);
    }
    endStartup(server, id, token.startupId);
    xcb_flush(server);
}

} // namespace vellumine
