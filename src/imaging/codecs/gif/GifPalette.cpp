#include "imaging/codecs/gif/GifPalette.h"

#include <algorithm>
#include <array>
#include <libimagequant.h>
#include <limits>
#include <memory>

namespace vellumine::imaging::gif {

namespace {

constexpr std::size_t maximumColors = 256;
constexpr std::uint8_t opaqueFrom = 128;

bool isTransparent(const std::uint8_t* pixel)
{
    return pixel[3] < opaqueFrom;
}

/// A small hash table from colours to palette indexes, with room for one palette.
class ColorSet {
public:
    /// The index of the colour, which is added where it is new; none when the palette is full.
    std::optional<std::uint8_t> indexOf(
        std::vector<IndexedImage::Color>& palette, std::size_t capacity, const std::uint8_t* pixel)
    {
        const std::uint32_t key = static_cast<std::uint32_t>(pixel[0]) << 16U
            | static_cast<std::uint32_t>(pixel[1]) << 8U | pixel[2];
        std::size_t at = key * 2654435761U >> 22U; // Fibonacci hashing: the top ten bits
        while (m_slots.at(at).used && m_slots.at(at).key != key) {
            at = (at + 1) % m_slots.size();
        }
        Slot& slot = m_slots.at(at);
        if (!slot.used) {
            if (palette.size() == capacity) {
                return std::nullopt;
            }
            slot = { key, static_cast<std::uint8_t>(palette.size()), true };
            palette.push_back({ pixel[0], pixel[1], pixel[2] });
        }
        return slot.index;
    }

private:
    struct Slot {
        std::uint32_t key = 0;
        std::uint8_t index = 0;
        bool used = false;
    };
    std::array<Slot, 1024> m_slots {};
};

bool anyTransparent(const Image& rgba)
{
    for (int y = 0; y < rgba.height(); ++y) {
        const std::uint8_t* pixel = rgba.row8(y);
        for (int x = 0; x < rgba.width(); ++x, pixel += 4) {
            if (isTransparent(pixel)) {
                return true;
            }
        }
    }
    return false;
}

/// Fills the palette and the indexes of opaque pixels; false when there are too many colours.
bool indexExactly(const Image& rgba, std::size_t capacity, IndexedImage& result)
{
    ColorSet colors;
    std::size_t at = 0;
    for (int y = 0; y < rgba.height(); ++y) {
        const std::uint8_t* pixel = rgba.row8(y);
        for (int x = 0; x < rgba.width(); ++x, ++at, pixel += 4) {
            if (isTransparent(pixel)) {
                continue;
            }
            const auto index = colors.indexOf(result.palette, capacity, pixel);
            if (!index) {
                return false;
            }
            result.indexes[at] = *index;
        }
    }
    return true;
}

struct Destroy {
    void operator()(liq_attr* attributes) const { liq_attr_destroy(attributes); }
    void operator()(liq_image* image) const { liq_image_destroy(image); }
    void operator()(liq_result* result) const { liq_result_destroy(result); }
};
template <typename Handle> using Owned = std::unique_ptr<Handle, Destroy>;

// What the quantiser sees: no half transparency, and nothing behind the transparent pixels.
void rowForQuantiser(liq_color* row, int y, int width, void* image)
{
    const std::uint8_t* pixel = static_cast<const Image*>(image)->row8(y);
    for (int x = 0; x < width; ++x, pixel += 4) {
        row[x] = isTransparent(pixel) ? liq_color { 0, 0, 0, 0 }
                                      : liq_color { pixel[0], pixel[1], pixel[2], 0xFF };
    }
}

tl::unexpected<Error> quantiserFailure(liq_error error)
{
    return failure(
        error == LIQ_OUT_OF_MEMORY ? Error::Kind::outOfMemory : Error::Kind::encodingFailed,
        "no palette could be made");
}

std::uint8_t nearestOpaque(
    const std::vector<liq_color>& palette, const std::uint8_t* pixel, std::size_t fallback)
{
    std::size_t best = fallback;
    int smallest = std::numeric_limits<int>::max();
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const int red = palette[i].r - pixel[0];
        const int green = palette[i].g - pixel[1];
        const int blue = palette[i].b - pixel[2];
        const int distance = red * red + green * green + blue * blue;
        if (palette[i].a >= opaqueFrom && distance < smallest) {
            smallest = distance;
            best = i;
        }
    }
    return static_cast<std::uint8_t>(best);
}

Result<void> quantise(const Image& rgba, std::size_t capacity, IndexedImage& result)
{
    const Owned<liq_attr> attributes(liq_attr_create());
    if (!attributes) {
        return failure(Error::Kind::outOfMemory, "no palette could be made");
    }
    liq_set_max_colors(attributes.get(), static_cast<int>(capacity));
    liq_set_quality(attributes.get(), 0, 100);
    // The callback only reads.
    const Owned<liq_image> picture(liq_image_create_custom(attributes.get(), rowForQuantiser,
        const_cast<Image*>(&rgba), rgba.width(), rgba.height(), 0));
    if (!picture) {
        return failure(Error::Kind::outOfMemory, "no palette could be made");
    }
    liq_result* raw = nullptr;
    if (const liq_error error = liq_image_quantize(picture.get(), attributes.get(), &raw);
        error != LIQ_OK) {
        return quantiserFailure(error);
    }
    const Owned<liq_result> quantised(raw);
    liq_set_dithering_level(quantised.get(), 1.0F);
    if (const liq_error error = liq_write_remapped_image(
            quantised.get(), picture.get(), result.indexes.data(), result.indexes.size());
        error != LIQ_OK) {
        return quantiserFailure(error);
    }
    const liq_palette* const palette = liq_get_palette(quantised.get());
    const std::vector<liq_color> colors(palette->entries, palette->entries + palette->count);
    result.palette.clear();
    for (const liq_color& color : colors) {
        result.palette.push_back({ color.r, color.g, color.b });
    }

    // The quantiser weighs transparency like a colour and may mix the two. Which pixel is
    // transparent is not its decision: the caller marks those that are, and no other may be.
    std::size_t at = 0;
    for (int y = 0; y < rgba.height(); ++y) {
        const std::uint8_t* pixel = rgba.row8(y);
        for (int x = 0; x < rgba.width(); ++x, ++at, pixel += 4) {
            if (!isTransparent(pixel) && colors[result.indexes[at]].a < opaqueFrom) {
                result.indexes[at] = nearestOpaque(colors, pixel, result.indexes[at]);
            }
        }
    }
    return {};
}

void markTransparent(const Image& rgba, IndexedImage& result)
{
    result.transparentIndex = static_cast<std::uint8_t>(result.palette.size());
    result.palette.emplace_back();
    std::size_t at = 0;
    for (int y = 0; y < rgba.height(); ++y) {
        const std::uint8_t* pixel = rgba.row8(y);
        for (int x = 0; x < rgba.width(); ++x, ++at, pixel += 4) {
            if (isTransparent(pixel)) {
                result.indexes[at] = *result.transparentIndex;
            }
        }
    }
}

} // namespace

Result<IndexedImage> indexed(const Image& rgba)
{
    const bool hasTransparent = anyTransparent(rgba);
    const std::size_t capacity = hasTransparent ? maximumColors - 1 : maximumColors;
    IndexedImage result { rgba.size(), {}, {}, {} };
    result.indexes.resize(
        static_cast<std::size_t>(rgba.width()) * static_cast<std::size_t>(rgba.height()));
    if (!indexExactly(rgba, capacity, result)) {
        if (const auto done = quantise(rgba, capacity, result); !done) {
            return tl::unexpected(done.error());
        }
    }
    if (hasTransparent) {
        markTransparent(rgba, result);
    }
    return result;
}

} // namespace vellumine::imaging::gif
