#include "app/windows/WindowActivation.h"

#include "app/x11/XcbConnection.h"

#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace vellumine {
namespace {

void sendToRoot(const xcb_client_message_event_t& message, std::uint32_t audience)
{
    std::array<char, sizeof message> bytes {};
    std::memcpy(bytes.data(), &message, sizeof message);
    xcb_send_event(xcb::connection(), 0, xcb::rootWindow(), audience, bytes.data());
}

/// Asks the window manager with the time of the user's action: with our own last one, which may be
/// long ago, it would only make the window blink.
void activateSince(xcb::Window window, std::uint32_t time)
{
    xcb_change_property(xcb::connection(), XCB_PROP_MODE_REPLACE, window,
        xcb::atom("_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 32, 1, &time);
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = xcb::atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 1; // an application asks
    message.data.data32[1] = time;
    sendToRoot(message, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

/// Tells whoever shows a busy pointer that the start is over. The text travels in pieces.
void endStartup(xcb::Window window, const QByteArray& startupId)
{
    QByteArray quoted = startupId;
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    const QByteArray text = "remove: ID=\"" + quoted + '"';
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = window;
    message.type = xcb::atom("_NET_STARTUP_INFO_BEGIN");
    constexpr qsizetype piece = sizeof message.data.data8;
    // The zero at its end travels with the text.
    for (qsizetype start = 0; start < text.size() + 1; start += piece) {
        std::memset(&message.data, 0, sizeof message.data);
        std::memcpy(message.data.data8, text.constData() + start,
            static_cast<std::size_t>(std::min(piece, text.size() + 1 - start)));
        sendToRoot(message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = xcb::atom("_NET_STARTUP_INFO");
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
    // Unlike show(), this leaves a window maximised that is.
    window.setWindowStates(window.windowStates() & ~Qt::WindowStates(Qt::WindowMinimized));
    window.setVisible(true);
    window.raise();
    window.requestActivate();

    if (!xcb::connection() || token.startupId.isEmpty()) {
        return;
    }
    const auto id = static_cast<xcb::Window>(window.winId());
    if (const auto time = timeOfStartup(token.startupId)) {
        activateSince(id, *time);
    }
    endStartup(id, token.startupId);
    xcb_flush(xcb::connection());
}

} // namespace vellumine
