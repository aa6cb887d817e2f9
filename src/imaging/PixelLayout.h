#pragma once

#include <cstdint>

namespace vellumine::imaging {

enum class ColorModel : std::uint8_t { grey, rgb, cmyk };

/// Where alpha sits in a pixel, and what it means for the colour beside it.
enum class AlphaInfo : std::uint8_t {
    none, ///< no alpha and no padding
    premultipliedLast,
    premultipliedFirst,
    last, ///< straight
    first, ///< straight
    noneSkipLast, ///< a padding sample that means nothing
    noneSkipFirst,
    only, ///< an alpha channel without colour
};

/// True for the four layouts that carry colour and alpha.
[[nodiscard]] constexpr bool hasAlpha(AlphaInfo alpha)
{
    return alpha == AlphaInfo::premultipliedLast || alpha == AlphaInfo::premultipliedFirst
        || alpha == AlphaInfo::last || alpha == AlphaInfo::first;
}

[[nodiscard]] constexpr bool isPremultiplied(AlphaInfo alpha)
{
    return alpha == AlphaInfo::premultipliedLast || alpha == AlphaInfo::premultipliedFirst;
}

/// How the samples of one pixel lie in memory: interleaved, in the order grey, RGB or CMYK, 8 bits
/// or 16 bits in the machine's byte order. CMYK counts ink: 0 is none, the maximum is full.
struct PixelLayout {
    ColorModel model = ColorModel::rgb;
    int bitsPerComponent = 8; ///< 8 or 16
    AlphaInfo alpha = AlphaInfo::none;

    [[nodiscard]] constexpr int colorChannels() const
    {
        if (alpha == AlphaInfo::only) {
            return 0;
        }
        switch (model) {
        case ColorModel::grey:
            return 1;
        case ColorModel::rgb:
            return 3;
        case ColorModel::cmyk:
            return 4;
        }
        return 0;
    }

    /// Samples in a pixel, alpha or padding included.
    [[nodiscard]] constexpr int channels() const
    {
        return colorChannels() + (alpha == AlphaInfo::none ? 0 : 1);
    }

    [[nodiscard]] constexpr int bytesPerPixel() const { return channels() * bitsPerComponent / 8; }

    friend constexpr bool operator==(const PixelLayout&, const PixelLayout&) = default;
};

/// The layout of every bitmap that the product draws into.
inline constexpr PixelLayout rgba8Premultiplied { ColorModel::rgb, 8,
    AlphaInfo::premultipliedLast };

} // namespace vellumine::imaging
