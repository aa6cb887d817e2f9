#pragma once

#include "imaging/Image.h"

#include <cstdint>
#include <span>

namespace vellumine::imaging {

/// A premultiplied sample as straight colour, rounded to nearest:
/// min(255, (sample * 255 + alpha / 2) / alpha). `alpha` must not be 0.
[[nodiscard]] constexpr std::uint8_t unpremultiplied(std::uint8_t sample, std::uint8_t alpha)
{
    const unsigned value
        = (static_cast<unsigned>(sample) * 255U + alpha / 2U) / static_cast<unsigned>(alpha);
    return static_cast<std::uint8_t>(value < 255U ? value : 255U);
}

/// The same picture in another layout, numbers unchanged in meaning: samples widened (times 257)
/// or rounded to 8 bits, grey spread over RGB, alpha moved, premultiplied or divided out. Taking
/// alpha away composes on white. An alpha that the source lacks is opaque. The models must be
/// equal, or grey to RGB (a grey picture with a profile of its own is not the caller to hand in:
/// its numbers would change their meaning), or RGB to grey for a picture that isGrey(): one of its
/// three equal samples stays, and its profile is left behind. Gives the very same picture when
/// nothing changes.
[[nodiscard]] Result<Image> relayout(const Image& image, PixelLayout layout);

/// Whether every pixel is fully opaque; true for pictures without alpha. One with alpha must have
/// rows, and so must isGrey's.
[[nodiscard]] bool isOpaque(const Image& image);
/// The same of 8-bit RGBA pixels in a row, or in several without gaps.
[[nodiscard]] bool isOpaque(std::span<const std::uint8_t> rgba);

/// Whether the picture is another one without its alpha: where not every pixel is opaque, and where
/// alpha is all that there is.
[[nodiscard]] bool needsAlpha(const Image& image);

/// Whether every pixel of an RGB picture has three equal samples; true for grey pictures.
[[nodiscard]] bool isGrey(const Image& image);

} // namespace vellumine::imaging
