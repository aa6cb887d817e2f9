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

} // namespace

Size samplesOf(Size picture, Subsampling subsampling, int plane)
{
    return plane == 0
        ? picture
        : Size { shared(picture.width, subsampling.x), shared(picture.height, subsampling.y) };
}

Result<YccPlanes> YccPlanes::create(Size size, Subsampling subsampling, Size room)
{
    assert(size.width > 0 && size.height > 0);
    assert(room.width >= size.width && room.height >= size.height);
    YccPlanes planes;
    planes.m_size = size;
    planes.m_subsampling = subsampling;
    std::size_t total = 0;
    for (int plane = 0; plane < 3; ++plane) {
        const Size samples = samplesOf(room, subsampling, plane);
        const std::size_t bytes = alignedUp(static_cast<std::size_t>(samples.width));
        planes.m_rowBytes.at(plane == 0 ? 0 : 1) = bytes;
        planes.m_starts.at(static_cast<std::size_t>(plane)) = total;
        total += bytes * static_cast<std::size_t>(samples.height);
    }
    planes.m_memory = allocatePixels(total + pixelAlignment);
    if (!planes.m_memory) {
        return failure(Error::Kind::outOfMemory, "no memory for the pixels");
    }
    return planes;
}

std::size_t YccPlanes::rowBytes(int plane) const
{
    return m_rowBytes[plane == 0 ? 0 : 1];
}

const std::uint8_t* YccPlanes::row(int plane, int y) const
{
    const std::size_t start = m_starts.at(static_cast<std::size_t>(plane));
    return reinterpret_cast<const std::uint8_t*>(
        m_memory.get() + start + static_cast<std::size_t>(y) * rowBytes(plane));
}

std::uint8_t* YccPlanes::row(int plane, int y)
{
    return const_cast<std::uint8_t*>(std::as_const(*this).row(plane, y));
}

} // namespace vellumine::imaging::ycc
