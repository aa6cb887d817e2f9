#include "imaging/ycc/YccPlanes.h"

#include <cassert>
#include <utility>

namespace vellumine::imaging::ycc {

namespace {

/// Rounded up, for any number of pixels from 1 on.
constexpr int shared(int pixels, int by)
{
    return (pixels - 1) / by + 1;
}

std::size_t rowBytesIn(Size room, Subsampling subsampling, int plane)
{
    return alignedUp(static_cast<std::size_t>(samplesOf(room, subsampling, plane).width));
}

} // namespace

Size samplesOf(Size picture, Subsampling subsampling, int plane)
{
    return plane == 0
        ? picture
        : Size { shared(picture.width, subsampling.x), shared(picture.height, subsampling.y) };
}

Result<YccPlanes> YccPlanes::create(Size size, Subsampling subsampling, Size room)
{
    const auto bytesOf = [&](int plane) {
        return rowBytesIn(room, subsampling, plane)
            * static_cast<std::size_t>(samplesOf(room, subsampling, plane).height);
    };
    const std::size_t brightness = bytesOf(0);
    const std::size_t color = bytesOf(1);
    const PixelMemory all = allocatePixels(brightness + 2 * color + pixelAlignment);
    if (!all) {
        return failure(Error::Kind::outOfMemory, "no memory for the pixels");
    }
    const auto at = [&](std::size_t start) { return PixelMemory(all, all.get() + start); };
    return YccPlanes(size, subsampling, room, { at(0), at(brightness), at(brightness + color) });
}

YccPlanes::YccPlanes(
    Size size, Subsampling subsampling, Size room, std::array<PixelMemory, 3> memory)
    : m_size(size)
    , m_subsampling(subsampling)
    , m_rowBytes { rowBytesIn(room, subsampling, 0), rowBytesIn(room, subsampling, 1) }
    , m_memory(std::move(memory))
{
    assert(size.width > 0 && size.height > 0);
    assert(room.width >= size.width && room.height >= size.height);
}

std::size_t YccPlanes::rowBytes(int plane) const
{
    return m_rowBytes[plane == 0 ? 0 : 1];
}

const std::uint8_t* YccPlanes::row(int plane, int y) const
{
    const std::byte* const start = m_memory.at(static_cast<std::size_t>(plane)).get();
    return reinterpret_cast<const std::uint8_t*>(
        start + static_cast<std::size_t>(y) * rowBytes(plane));
}

std::uint8_t* YccPlanes::row(int plane, int y)
{
    return const_cast<std::uint8_t*>(std::as_const(*this).row(plane, y));
}

} // namespace vellumine::imaging::ycc
