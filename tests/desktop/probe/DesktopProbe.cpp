#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What an X server shows, for scripts:
//
//   desktop_probe pixel X Y           the colour there, as #rrggbb
//   desktop_probe colors X Y W H      how many colours the rectangle has
//   desktop_probe digest X Y W H      a number that tells one picture of the rectangle from another
//   desktop_probe selection NAME      the window that owns the selection; fails if none does

namespace {

struct Freeing {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(*-no-malloc)
};
template <typename Reply> using Answer = std::unique_ptr<Reply, Freeing>;

struct Closing {
    void operator()(xcb_connection_t* server) const { xcb_disconnect(server); }
};
using Server = std::unique_ptr<xcb_connection_t, Closing>;

struct Rectangle {
    std::int16_t x;
    std::int16_t y;
    std::uint16_t width;
    std::uint16_t height;
};

xcb_window_t rootWindow(xcb_connection_t* server)
{
    return xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
}

/// The colours of the screen's rectangle, row by row, as 0xrrggbb. Empty where it leaves the screen.
std::vector<std::uint32_t> pixels(xcb_connection_t* server, const Rectangle& place)
{
    constexpr std::uint32_t allPlanes = 0xffffffff;
    const Answer<xcb_get_image_reply_t> image(xcb_get_image_reply(server,
        xcb_get_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, rootWindow(server), place.x, place.y,
            place.width, place.height, allPlanes),
        nullptr));
    if (!image) {
        return {};
    }
    std::vector<std::uint32_t> found(std::size_t { place.width } * place.height);
    const std::span data(xcb_get_image_data(image.get()),
        static_cast<std::size_t>(xcb_get_image_data_length(image.get())));
    if (data.size() < found.size() * sizeof found[0]) {
        return {};
    }
    std::memcpy(found.data(), data.data(), found.size() * sizeof found[0]);
    for (std::uint32_t& pixel : found) {
        pixel &= 0xffffffU;
    }
    return found;
}

std::optional<xcb_window_t> selectionOwner(xcb_connection_t* server, std::string_view name)
{
    const Answer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(server,
        xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    if (!atom) {
        return std::nullopt;
    }
    const Answer<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        server, xcb_get_selection_owner(server, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE ? std::optional(owner->owner) : std::nullopt;
}

int print(std::string_view what, std::vector<std::uint32_t> colors)
{
    if (colors.empty()) {
        return EXIT_FAILURE;
    }
    if (what == "pixel") {
        std::printf("#%06x\n", colors.front());
    } else if (what == "colors") {
        std::sort(colors.begin(), colors.end());
        std::printf("%td\n", std::unique(colors.begin(), colors.end()) - colors.begin());
    } else {
        std::uint64_t digest = 1469598103934665603U; // FNV-1a
        for (const std::uint32_t color : colors) {
            digest = (digest ^ color) * 1099511628211U;
        }
        std::printf("%016llx\n", static_cast<unsigned long long>(digest));
    }
    return EXIT_SUCCESS;
}

int run(std::span<char*> arguments)
{
    const Server server(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(server.get()) != 0 || arguments.size() < 2) {
        return EXIT_FAILURE;
    }
    const std::string_view what = arguments[0];
    if (what == "selection") {
        const auto owner = selectionOwner(server.get(), arguments[1]);
        if (owner) {
            std::printf("0x%x\n", *owner);
        }
        return owner ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    std::array<int, 4> numbers { 0, 0, 1, 1 };
    for (std::size_t index = 0; index < std::min(numbers.size(), arguments.size() - 1); ++index) {
        numbers.at(index) = std::atoi(arguments[index + 1]); // NOLINT(cert-err34-c)
    }
    return print(what,
        pixels(server.get(),
            { static_cast<std::int16_t>(numbers[0]), static_cast<std::int16_t>(numbers[1]),
                static_cast<std::uint16_t>(numbers[2]), static_cast<std::uint16_t>(numbers[3]) }));
}

} // namespace

int main(int argc, char** argv)
{
    return run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
}
