#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

struct xcb_connection_t;
struct xcb_screen_t;

// What everything needs that talks to the X server past Qt.

namespace vellumine::xcb {

using Window = std::uint32_t;
using Atom = std::uint32_t;
inline constexpr Window noWindow = 0;

struct Freeing {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(*-no-malloc)
};

/// What the server answered; null on an error.
template <typename Reply> using Answer = std::unique_ptr<Reply, Freeing>;

/// The application's connection to its X server; none on another platform.
[[nodiscard]] xcb_connection_t* connection();

/// The first screen, where trays stand; a display with several is a relic. There has to be a
/// connection.
[[nodiscard]] const xcb_screen_t& screen();
[[nodiscard]] Window rootWindow();

/// The atom of that name. There has to be a connection.
[[nodiscard]] Atom atom(std::string_view name);

/// The window that has the selection; none when nobody has it.
[[nodiscard]] Window selectionOwner(Atom selection);

/// Has the server fill what it shows of the window before we have drawn it with that colour, a
/// pixel of the window's own format.
void setGround(Window window, std::uint32_t pixel);

/// Whether somebody blends windows with what lies below them. Otherwise what is transparent is
/// black. There has to be a connection.
[[nodiscard]] bool isComposited();

} // namespace vellumine::xcb
