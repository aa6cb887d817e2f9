#pragma once

#include "app/x11/XcbConnection.h"

#include <QRect>

#include <cstdint>
#include <optional>

// The requests to an X server that a status item needs: the system tray protocol, XEmbed, and what
// tells that a drag is going on. Each waits for its answer; there are few of them.

namespace vellumine::xcb {

/// The atoms of the protocols.
struct Atoms {
    Atom trayOwner; ///< _NET_SYSTEM_TRAY_S0
    Atom trayOpcode;
    Atom trayVisual;
    Atom manager;
    Atom embedInfo; ///< _XEMBED_INFO
    Atom opacity; ///< _NET_WM_WINDOW_OPACITY
    Atom dragSelection; ///< XdndSelection
};
[[nodiscard]] Atoms atoms();

/// The window of the running tray, if one runs.
[[nodiscard]] Window trayOwner(const Atoms& atoms);

/// Whether the tray asks its items for a visual with alpha: then they can be transparent.
[[nodiscard]] bool trayWantsAlpha(const Atoms& atoms, Window tray);

/// Adds structure events to those that are selected on the window already.
void listenToStructure(Window window);

/// Has changes of the drag selection's owner reported; the number of that event, if the server has
/// the extension.
[[nodiscard]] std::optional<std::uint8_t> listenToDrags(const Atoms& atoms);

/// Asks the tray to take the window in.
void requestDock(const Atoms& atoms, Window tray, Window item);

/// Whether the window or what it stands in is made wholly transparent. Such a tray shows a picture
/// of the item somewhere else, where no drop arrives.
[[nodiscard]] bool isInvisiblyEmbedded(const Atoms& atoms, Window window);

/// Where the window is on the screen, in the server's pixels.
[[nodiscard]] std::optional<QRect> screenGeometry(Window window);

/// Whether a mouse button is held down.
[[nodiscard]] bool isButtonDown();

} // namespace vellumine::xcb
