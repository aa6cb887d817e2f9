#pragma once

#include "imaging/Image.h"

#include <cstdint>
#include <optional>

namespace vellumine::imaging {

/// The eight orientations of EXIF tag 0x0112: where the stored picture's first row and first
/// column are, as seen by the viewer.
enum class Orientation : std::uint8_t {
    topLeft = 1,
    topRight = 2,
    bottomRight = 3,
    bottomLeft = 4,
    leftTop = 5,
    rightTop = 6,
    rightBottom = 7,
    leftBottom = 8,
};

/// The orientation for a tag value; none outside 1 to 8.
[[nodiscard]] std::optional<Orientation> orientationFromTag(std::int64_t value);

/// Whether the upright picture has the stored one's sides exchanged (5 to 8).
[[nodiscard]] constexpr bool swapsSides(Orientation orientation)
{
    return orientation >= Orientation::leftTop;
}

[[nodiscard]] constexpr Size uprightSize(Size stored, Orientation orientation)
{
    return swapsSides(orientation) ? Size { stored.height, stored.width } : stored;
}

/// Where the part of the upright picture stands in the stored one.
[[nodiscard]] Rect storedRect(Rect upright, Size uprightSize, Orientation orientation);
/// Where the part of the stored picture stands in the upright one.
[[nodiscard]] Rect uprightRect(Rect stored, Size storedSize, Orientation orientation);

/// Turns a picture, or a part of one, upright and writes it to its place in the upright picture's
/// pixels, from column `x` and row `y` on. The layouts must be equal, and there must be room.
void writeUpright(const Image& stored, Orientation orientation, PixelBuffer& pixels, int x, int y);

/// The picture turned upright, pixel for pixel. One with deferred pixels keeps them so; it must
/// not have been turned before. TopLeft gives the very same picture back. Fails
/// with OutOfMemory only.
[[nodiscard]] Result<Image> upright(const Image& stored, Orientation orientation);

} // namespace vellumine::imaging
