#pragma once

#include <cstdint>

namespace vellumine::imaging {

enum class ColorModel : std::uint8_t { Grey, Rgb, Cmyk };

/// Where alpha sits in a pixel, and what it means for the colour beside it.
enum class AlphaInfo : std::uint8_t {
    None, ///< no alpha and no padding
    PremultipliedLast,
    PremultipliedFirst,
    Last, ///< straight
    First, ///< straight
    NoneSkipLast, ///< a padding sample that means nothing
    NoneSkipFirst,
    Only, ///< an alpha channel without colour
};

/// True for the four layouts that carry colour and alpha.
[[nodiscard]] constexpr bool hasAlpha(AlphaInfo alpha)
{
    return alpha == AlphaInfo::PremultipliedLast || alpha == AlphaInfo::PremultipliedFirst
        || alpha == AlphaInfo::Last || alpha == AlphaInfo::First;
}

[[nodiscard]] constexpr bool isPremultiplied(AlphaInfo alpha)
{
    return alpha == AlphaInfo::PremultipliedLast || alpha == AlphaInfo::PremultipliedFirst;
}

/// How the samples of one pixel lie in memory: interleaved, in the order grey, RGB or CMYK, 8 bits
/// or 16 bits in the machine's byte order. CMYK counts ink: 0 is none, the maximum is full.
struct PixelLayout {
    ColorModel model = ColorModel::Rgb;
    int bitsPerComponent = 8; ///< 8 or 16
    AlphaInfo alpha = AlphaInfo::None;

    [[nodiscard]] constexpr int colorChannels() const
    {
        if (alpha == AlphaInfo::Only) {
            return 0;
        }
        switch (model) {
        case ColorModel::Grey:
            return 1;
        case ColorModel::Rgb:
            return 3;
        case ColorModel::Cmyk:
            return 4;
        }
        return 0;
    }

    /// Samples in a pixel, alpha or padding included.
    [[nodiscard]] constexpr int channels() const
    {
        return colorChannels() + (alpha == AlphaInfo::None ? 0 : 1);
    }

    [[nodiscard]] constexpr int bytesPerPixel() const { return channels() * bitsPerComponent / 8; }

    friend constexpr bool operator==(const PixelLayout&, const PixelLayout&) = default;
};

/// The layout of every bitmap that the product draws into.
inline constexpr PixelLayout rgba8Premultiplied { ColorModel::Rgb, 8,
    AlphaInfo::PremultipliedLast };

} // namespace vellumine::imaging
