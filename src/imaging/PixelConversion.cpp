#include "imaging/PixelConversion.h"

#include "imaging/OpaquePixel.h"
#include "imaging/VectorClones.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <limits>
#include <span>
#include <type_traits>

namespace vellumine::imaging {

namespace {

/// Where the samples of a pixel stand, in samples from the pixel's start.
struct Positions {
    explicit Positions(PixelLayout layout)
        : stride(layout.channels())
        , colors(layout.colorChannels())
        , premultiplied(isPremultiplied(layout.alpha))
    {
        const bool first = layout.alpha == AlphaInfo::first
            || layout.alpha == AlphaInfo::premultipliedFirst
            || layout.alpha == AlphaInfo::noneSkipFirst;
        color = first ? 1 : 0;
        if (layout.channels() != colors) {
            extra = first ? 0 : colors;
        }
        if (imaging::hasAlpha(layout.alpha) || layout.alpha == AlphaInfo::only) {
            alpha = extra;
        }
    }

    int stride;
    int colors;
    bool premultiplied;
    int color = 0; ///< the first colour sample
    int extra = -1; ///< the alpha or padding sample, -1 without one
    int alpha = -1; ///< the alpha sample, -1 without one
};

template <typename Work, typename In> constexpr std::uint32_t widened(In value)
{
    return sizeof(Work) > sizeof(In) ? static_cast<std::uint32_t>(value) * 257U : value;
}

template <typename Out, typename Work> constexpr Out narrowed(std::uint32_t value)
{
    return static_cast<Out>(sizeof(Work) > sizeof(Out) ? (value + 128U) / 257U : value);
}

/// One row, any layout to any other. The arithmetic is done in the deeper of the two depths.
template <typename In, typename Out>
void convertRow(const In* source, Out* target, int width, const Positions& from,
    const Positions& to, std::uint32_t white)
{
    using Work = std::conditional_t<(sizeof(In) > sizeof(Out)), In, Out>;
    constexpr std::uint32_t maximum = std::numeric_limits<Work>::max();

    for (int x = 0; x < width; ++x, source += from.stride, target += to.stride) {
        const std::uint32_t alpha = from.alpha < 0 ? maximum : widened<Work>(source[from.alpha]);
        for (int c = 0; c < to.colors; ++c) {
            std::uint32_t value = widened<Work>(source[from.color + (from.colors == 1 ? 0 : c)]);
            if (alpha != maximum) {
                if (to.alpha < 0) {
                    // Over white: white shines through where the picture does not cover it.
                    if (!from.premultiplied) {
                        value = (value * alpha + maximum / 2) / maximum;
                    }
                    const std::uint32_t through
                        = (white * (maximum - alpha) + maximum / 2) / maximum;
                    value = std::min(maximum, value + through);
                } else if (to.premultiplied && !from.premultiplied) {
                    value = (value * alpha + maximum / 2) / maximum;
                } else if (!to.premultiplied && from.premultiplied && alpha != 0) {
                    value = std::min(maximum, (value * maximum + alpha / 2) / alpha);
                }
            }
            target[to.color + c] = narrowed<Out, Work>(value);
        }
        if (to.extra >= 0) {
            target[to.extra]
                = to.alpha < 0 ? std::numeric_limits<Out>::max() : narrowed<Out, Work>(alpha);
        }
    }
}

/// The two conversions that every photograph takes, in a form that the compiler vectorises.
bool convertRowFast(
    const Image& image, int y, PixelBuffer& target, PixelLayout from, PixelLayout to)
{
    const int width = image.width();
    if (from == PixelLayout { ColorModel::rgb, 8, AlphaInfo::none } && to == rgba8Premultiplied) {
        const std::uint8_t* source = image.row8(y);
        std::uint8_t* out = target.row8(y);
        for (int x = 0; x < width; ++x, source += 3, out += 4) {
            storeOpaque(out, source[0], source[1], source[2]);
        }
        return true;
    }
    if (from == rgba8Premultiplied && to == PixelLayout { ColorModel::rgb, 8, AlphaInfo::none }) {
        const std::uint8_t* source = image.row8(y);
        std::uint8_t* out = target.row8(y);
        for (int x = 0; x < width; ++x, source += 4, out += 3) {
            const int through = 255 - source[3];
            out[0] = static_cast<std::uint8_t>(std::min(255, source[0] + through));
            out[1] = static_cast<std::uint8_t>(std::min(255, source[1] + through));
            out[2] = static_cast<std::uint8_t>(std::min(255, source[2] + through));
        }
        return true;
    }
    return false;
}

ColorSpace spaceAfter(const Image& image, PixelLayout layout)
{
    if (image.layout().model == layout.model) {
        return image.colorSpace();
    }
    return layout.model == ColorModel::grey ? ColorSpace::grey() : ColorSpace::sRgb();
}

template <typename Sample> const Sample* samples(const Image& image, int y)
{
    return reinterpret_cast<const Sample*>(image.row(y).data());
}

/// The alphas of RGBA pixels, joined by "and".
VELLUMINE_VECTOR_CLONES
std::uint8_t commonAlpha(const std::uint8_t* rgba, std::size_t count)
{
    std::uint32_t all = ~std::uint32_t { 0 };
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, rgba + 4 * i, sizeof(pixel));
        all &= pixel;
    }
    std::array<std::uint8_t, sizeof(all)> samples {};
    std::memcpy(samples.data(), &all, sizeof(all));
    return samples[3];
}

template <typename Sample> bool rowIsOpaque(const Image& image, int y, const Positions& at)
{
    const Sample* row = samples<Sample>(image, y) + at.alpha;
    Sample all = std::numeric_limits<Sample>::max();
    for (int x = 0; x < image.width(); ++x, row += at.stride) {
        all = static_cast<Sample>(all & *row);
    }
    return all == std::numeric_limits<Sample>::max();
}

template <typename Sample> bool rowIsGrey(const Image& image, int y, const Positions& at)
{
    const Sample* row = samples<Sample>(image, y) + at.color;
    unsigned differences = 0;
    for (int x = 0; x < image.width(); ++x, row += at.stride) {
        differences
            |= static_cast<unsigned>(row[0] ^ row[1]) | static_cast<unsigned>(row[0] ^ row[2]);
    }
    return differences == 0;
}

} // namespace

Result<Image> relayout(const Image& image, PixelLayout layout)
{
    const PixelLayout from = image.layout();
    assert(from.model == layout.model
        || (from.model == ColorModel::grey && layout.model == ColorModel::rgb)
        || (layout.model == ColorModel::grey && isGrey(image)));
    if (from == layout) {
        return image;
    }
    if (!image.hasRows()) {
        return image.withRows().and_then(
            [layout](const Image& rows) { return relayout(rows, layout); });
    }
    auto target = PixelBuffer::create(image.size(), layout);
    if (!target) {
        return tl::unexpected(target.error());
    }
    const Positions source(from);
    const Positions destination(layout);
    const bool deepSource = from.bitsPerComponent == 16;
    const bool deepTarget = layout.bitsPerComponent == 16;
    // No ink is white; otherwise white is the largest number of the depth that is worked in.
    const std::uint32_t white = layout.model == ColorModel::cmyk ? 0U
        : deepSource || deepTarget                               ? 65535U
                                                                 : 255U;
    for (int y = 0; y < image.height(); ++y) {
        if (convertRowFast(image, y, *target, from, layout)) {
            continue;
        }
        if (deepSource && deepTarget) {
            convertRow(image.row16(y), target->row16(y), image.width(), source, destination, white);
        } else if (deepSource) {
            convertRow(image.row16(y), target->row8(y), image.width(), source, destination, white);
        } else if (deepTarget) {
            convertRow(image.row8(y), target->row16(y), image.width(), source, destination, white);
        } else {
            convertRow(image.row8(y), target->row8(y), image.width(), source, destination, white);
        }
    }
    return Image(std::move(*target), spaceAfter(image, layout));
}

bool isOpaque(std::span<const std::uint8_t> rgba)
{
    return commonAlpha(rgba.data(), rgba.size() / 4) == 255;
}

bool isOpaque(const Image& image)
{
    const Positions at(image.layout());
    if (at.alpha < 0) {
        return true;
    }
    const bool deep = image.layout().bitsPerComponent == 16;
    const bool isRgba = !deep && at.stride == 4 && at.alpha == 3;
    for (int y = 0; y < image.height(); ++y) {
        const bool opaque = isRgba ? isOpaque(std::span(image.row8(y), image.row(y).size()))
            : deep                 ? rowIsOpaque<std::uint16_t>(image, y, at)
                                   : rowIsOpaque<std::uint8_t>(image, y, at);
        if (!opaque) {
            return false;
        }
    }
    return true;
}

bool needsAlpha(const Image& image)
{
    return image.layout().alpha == AlphaInfo::only || (image.hasAlpha() && !isOpaque(image));
}

bool isGrey(const Image& image)
{
    if (image.layout().model != ColorModel::rgb) {
        return image.layout().model == ColorModel::grey;
    }
    const Positions at(image.layout());
    if (at.colors != 3) {
        return false;
    }
    const bool deep = image.layout().bitsPerComponent == 16;
    for (int y = 0; y < image.height(); ++y) {
        if (!(deep ? rowIsGrey<std::uint16_t>(image, y, at)
                   : rowIsGrey<std::uint8_t>(image, y, at))) {
            return false;
        }
    }
    return true;
}

} // namespace vellumine::imaging
