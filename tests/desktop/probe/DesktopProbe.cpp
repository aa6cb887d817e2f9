#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

// What an X server shows, for scripts:
//
//   desktop_probe pixel X Y           the colour there, as #rrggbb
//   desktop_probe colors X Y W H      how many colours the rectangle has
//   desktop_probe digest X Y W H      a number that tells one picture of the rectangle from another
//   desktop_probe still X Y W H       waits, for a minute, until nothing moves in the rectangle
//   desktop_probe time                the server's own time, in milliseconds
//   desktop_probe windows PID         the visible windows of the process, one a line: id, width,
//                                     height, "screen" or "inside" for what it stands in, name
//   desktop_probe compositor          says that it blends windows, and prints so, until it is
//                                     ended; but blends none

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

/// The colours of the screen's rectangle, row by row, as 0xrrggbb. Empty where it leaves the
/// screen.
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

/// The server tells it with every change of a property.
std::optional<xcb_timestamp_t> serverTime(xcb_connection_t* server)
{
    const xcb_window_t window = xcb_generate_id(server);
    constexpr std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(server, XCB_COPY_FROM_PARENT, window, rootWindow(server), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    xcb_change_property(
        server, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(server);
    const Answer<xcb_generic_event_t> event(xcb_wait_for_event(server));
    if (!event || (event->response_type & 0x7fU) != XCB_PROPERTY_NOTIFY) {
        return std::nullopt;
    }
    return reinterpret_cast<const xcb_property_notify_event_t&>(*event).time;
}

std::string property(
    xcb_connection_t* server, xcb_window_t window, xcb_atom_t name, xcb_atom_t type)
{
    const Answer<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        server, xcb_get_property(server, 0, window, name, type, 0, 64), nullptr));
    if (!reply) {
        return {};
    }
    const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    return { static_cast<const char*>(xcb_get_property_value(reply.get())), length };
}

xcb_atom_t atom(xcb_connection_t* server, std::string_view name)
{
    const Answer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server,
        xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

struct Process {
    std::uint32_t id;
    xcb_atom_t idProperty;
};

void printIfVisible(xcb_connection_t* server, xcb_window_t window, xcb_window_t parent)
{
    const Answer<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        server, xcb_get_window_attributes(server, window), nullptr));
    const Answer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(server, xcb_get_geometry(server, window), nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return;
    }
    std::printf("%u %u %u %s %s\n", window, geometry->width, geometry->height,
        parent == rootWindow(server) ? "screen" : "inside",
        property(server, window, XCB_ATOM_WM_NAME, XCB_ATOM_ANY).c_str());
}

/// Windows come and go meanwhile: one that is gone has no answers, and is passed over.
void printWindows(xcb_connection_t* server, xcb_window_t parent, const Process& process)
{
    const Answer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(server, xcb_query_tree(server, parent), nullptr));
    if (!tree) {
        return;
    }
    const std::span children(xcb_query_tree_children(tree.get()),
        static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    for (const xcb_window_t window : children) {
        const std::string id = property(server, window, process.idProperty, XCB_ATOM_CARDINAL);
        std::uint32_t number = 0;
        if (id.size() == sizeof number) {
            std::memcpy(&number, id.data(), sizeof number);
        }
        if (number == process.id) {
            printIfVisible(server, window, parent);
        }
        printWindows(server, window, process);
    }
}

/// Whether the rectangle came to look the same for a third of a second.
bool comesToRest(xcb_connection_t* server, const Rectangle& place)
{
    using namespace std::chrono_literals;
    constexpr auto step = 30ms;
    constexpr int enough = 10;
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    std::vector<std::uint32_t> last = pixels(server, place);
    int same = 0;
    while (same < enough && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(step);
        std::vector<std::uint32_t> now = pixels(server, place);
        same = now == last ? same + 1 : 0;
        last = std::move(now);
    }
    return same == enough && !last.empty();
}

/// Those who blend windows are known by a selection that they have.
int passForCompositor(xcb_connection_t* server)
{
    const xcb_window_t window = xcb_generate_id(server);
    xcb_create_window(server, XCB_COPY_FROM_PARENT, window, rootWindow(server), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const xcb_atom_t selection = atom(server, "_NET_WM_CM_S0");
    xcb_set_selection_owner(server, window, selection, XCB_CURRENT_TIME);
    const Answer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, selection), nullptr));
    if (!reply || reply->owner != window) {
        return EXIT_FAILURE;
    }
    std::puts("blending");
    std::fflush(stdout);
    while (Answer<xcb_generic_event_t>(xcb_wait_for_event(server))) { }
    return EXIT_SUCCESS;
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
    if (xcb_connection_has_error(server.get()) != 0 || arguments.empty()) {
        return EXIT_FAILURE;
    }
    const std::string_view what = arguments[0];
    if (what == "time") {
        const auto time = serverTime(server.get());
        std::printf("%u\n", time.value_or(0));
        return time ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    if (what == "windows" && arguments.size() == 2) {
        printWindows(server.get(), rootWindow(server.get()),
            { .id = static_cast<std::uint32_t>(std::strtoul(arguments[1], nullptr, 10)),
                .idProperty = atom(server.get(), "_NET_WM_PID") });
        return EXIT_SUCCESS;
    }
    if (what == "compositor") {
        return passForCompositor(server.get());
    }
    std::array<int, 4> numbers { 0, 0, 1, 1 };
    for (std::size_t index = 0; index < std::min(numbers.size(), arguments.size() - 1); ++index) {
        numbers.at(index) = std::atoi(arguments[index + 1]); // NOLINT(cert-err34-c)
    }
    const Rectangle place { static_cast<std::int16_t>(numbers[0]),
        static_cast<std::int16_t>(numbers[1]), static_cast<std::uint16_t>(numbers[2]),
        static_cast<std::uint16_t>(numbers[3]) };
    if (what == "still") {
        return comesToRest(server.get(), place) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    return print(what, pixels(server.get(), place));
}

} // namespace

int main(int argc, char** argv)
{
    return run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
}
