#pragma once

#include <cstdint>
#include <span>

namespace vellumine {

/// Divides alpha out of RGBA pixels, rounded to nearest and at most 255. Pixels with alpha 0 or 255
/// stay as they are. Both spans have the same length, a multiple of 4.
void unpremultiply(std::span<const std::uint8_t> from, std::span<std::uint8_t> to);

} // namespace vellumine
