#include "imaging/resample/UprightRows.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace vellumine::imaging {

namespace {

/// Rows that are turned together.
constexpr int bandHeight = 32;
constexpr std::size_t pixelBytes = 4;

} // namespace

UprightRows::UprightRows(PixelBuffer& target, Orientation orientation)
    : m_target(target)
    , m_orientation(orientation)
    , m_storedSize(uprightSize(target.size(), orientation))
{
    assert(target.layout() == rgba8Premultiplied);
}

Result<UprightRows> UprightRows::create(PixelBuffer& target, Orientation orientation)
{
    UprightRows rows(target, orientation);
    if (orientation != Orientation::topLeft) {
        rows.m_band = allocatePixels(
            static_cast<std::size_t>(rows.m_storedSize.width) * bandHeight * pixelBytes);
        if (!rows.m_band) {
            return failure(Error::Kind::outOfMemory, "no memory to turn the picture");
        }
    }
    return rows;
}

std::uint8_t* UprightRows::begin(const PlanarRow& row)
{
    const std::size_t column = static_cast<std::size_t>(row.left) * pixelBytes;
    if (!m_band) {
        return m_target.row8(row.y) + column;
    }
    const std::size_t rowBytes = static_cast<std::size_t>(m_storedSize.width) * pixelBytes;
    return reinterpret_cast<std::uint8_t*>(m_band.get())
        + static_cast<std::size_t>(row.y % bandHeight) * rowBytes + column;
}

void UprightRows::end(const PlanarRow& row)
{
    const int line = row.y % bandHeight;
    if (!m_band || (line < bandHeight - 1 && row.y < m_storedSize.height - 1)) {
        return;
    }
    const Image band({ m_storedSize.width, bandHeight }, rgba8Premultiplied,
        static_cast<std::size_t>(m_storedSize.width) * pixelBytes, ColorSpace::sRgb(), m_band);
    const Rect part { row.left, row.y - line, row.right - row.left, line + 1 };
    const Rect place = uprightRect(part, m_storedSize, m_orientation);
    writeUpright(band.cropped({ part.x, 0, part.width, part.height }), m_orientation, m_target,
        place.x, place.y);
}

} // namespace vellumine::imaging
