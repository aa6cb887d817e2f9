#include "imaging/Orientation.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace vellumine::imaging {

namespace {

// Turned pictures are written in square tiles, so that the columns that are read and the rows that
// are written both stay in the cache.
constexpr int tileSide = 32;

/// Where the upright picture goes.
struct Target {
    std::byte* first;
    std::ptrdiff_t rowBytes;
    Size size;
};

template <std::size_t bytesPerPixel>
void remap(const Image& stored, Orientation orientation, const Target& target)
{
    const int lastColumn = target.size.width - 1;
    const int lastRow = target.size.height - 1;
    const auto sourceStride = static_cast<std::ptrdiff_t>(stored.rowBytes());
    const std::byte* const source = stored.row(0).data();
    constexpr auto pixel = static_cast<std::ptrdiff_t>(bytesPerPixel);

    // Where the upright pixel (x, y) stands in the stored picture: origin + x * stepX + y * stepY.
    std::ptrdiff_t origin = 0;
    std::ptrdiff_t stepX = pixel;
    std::ptrdiff_t stepY = sourceStride;
    switch (orientation) {
    case Orientation::topLeft:
        break;
    case Orientation::topRight:
        origin = lastColumn * pixel;
        stepX = -pixel;
        break;
    case Orientation::bottomRight:
        origin = lastColumn * pixel + lastRow * sourceStride;
        stepX = -pixel;
        stepY = -sourceStride;
        break;
    case Orientation::bottomLeft:
        origin = lastRow * sourceStride;
        stepY = -sourceStride;
        break;
    case Orientation::leftTop:
        stepX = sourceStride;
        stepY = pixel;
        break;
    case Orientation::rightTop:
        origin = lastColumn * sourceStride;
        stepX = -sourceStride;
        stepY = pixel;
        break;
    case Orientation::rightBottom:
        origin = lastColumn * sourceStride + lastRow * pixel;
        stepX = -sourceStride;
        stepY = -pixel;
        break;
    case Orientation::leftBottom:
        origin = lastRow * pixel;
        stepX = sourceStride;
        stepY = -pixel;
        break;
    }

    for (int top = 0; top <= lastRow; top += tileSide) {
        const int bottom = std::min(top + tileSide, lastRow + 1);
        for (int left = 0; left <= lastColumn; left += tileSide) {
            const int right = std::min(left + tileSide, lastColumn + 1);
            for (int y = top; y < bottom; ++y) {
                std::byte* to = target.first + y * target.rowBytes + left * pixel;
                const std::byte* from = source + origin + left * stepX + y * stepY;
                for (int x = left; x < right; ++x) {
                    std::memcpy(to, from, bytesPerPixel);
                    to += pixel;
                    from += stepX;
                }
            }
        }
    }
}

} // namespace

std::optional<Orientation> orientationFromTag(std::int64_t value)
{
    if (value < 1 || value > 8) {
        return std::nullopt;
    }
    return static_cast<Orientation>(value);
}

void writeUpright(const Image& stored, Orientation orientation, PixelBuffer& pixels, int x, int y)
{
    assert(stored.layout() == pixels.layout());
    const int bytesPerPixel = stored.layout().bytesPerPixel();
    const Size size = uprightSize(stored.size(), orientation);
    assert(contains(pixels.size(), { x, y, size.width, size.height }));
    const Target target { pixels.row(y).data() + static_cast<std::ptrdiff_t>(x) * bytesPerPixel,
        static_cast<std::ptrdiff_t>(pixels.rowBytes()), size };
    switch (bytesPerPixel) {
    case 1:
        remap<1>(stored, orientation, target);
        break;
    case 2:
        remap<2>(stored, orientation, target);
        break;
    case 3:
        remap<3>(stored, orientation, target);
        break;
    case 4:
        remap<4>(stored, orientation, target);
        break;
    case 6:
        remap<6>(stored, orientation, target);
        break;
    case 8:
        remap<8>(stored, orientation, target);
        break;
    case 5:
        remap<5>(stored, orientation, target);
        break;
    default:
        remap<10>(stored, orientation, target);
        break;
    }
}

Rect storedRect(Rect upright, Size uprightSize, Orientation orientation)
{
    const int fromRight = uprightSize.width - upright.x - upright.width;
    const int fromBottom = uprightSize.height - upright.y - upright.height;
    switch (orientation) {
    case Orientation::topLeft:
        break;
    case Orientation::topRight:
        return { fromRight, upright.y, upright.width, upright.height };
    case Orientation::bottomRight:
        return { fromRight, fromBottom, upright.width, upright.height };
    case Orientation::bottomLeft:
        return { upright.x, fromBottom, upright.width, upright.height };
    case Orientation::leftTop:
        return { upright.y, upright.x, upright.height, upright.width };
    case Orientation::rightTop:
        return { upright.y, fromRight, upright.height, upright.width };
    case Orientation::rightBottom:
        return { fromBottom, fromRight, upright.height, upright.width };
    case Orientation::leftBottom:
        return { fromBottom, upright.x, upright.height, upright.width };
    }
    return upright;
}

Rect uprightRect(Rect stored, Size storedSize, Orientation orientation)
{
    // What turns the picture back is the same orientation, but for the two quarter turns.
    switch (orientation) {
    case Orientation::rightTop:
        return storedRect(stored, storedSize, Orientation::leftBottom);
    case Orientation::leftBottom:
        return storedRect(stored, storedSize, Orientation::rightTop);
    default:
        return storedRect(stored, storedSize, orientation);
    }
}

Result<Image> upright(const Image& stored, Orientation orientation)
{
    if (orientation == Orientation::topLeft) {
        return stored;
    }
    if (!stored.hasRows()) {
        assert(stored.orientation() == Orientation::topLeft);
        return Image(
            stored.size(), stored.layout(), stored.colorSpace(), stored.deferred(), orientation);
    }
    auto target = PixelBuffer::create(uprightSize(stored.size(), orientation), stored.layout());
    if (!target) {
        return tl::unexpected(target.error());
    }
    writeUpright(stored, orientation, *target, 0, 0);
    return Image(std::move(*target), stored.colorSpace());
}

} // namespace vellumine::imaging
