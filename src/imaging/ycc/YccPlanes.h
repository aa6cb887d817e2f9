#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/PixelMemory.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vellumine::imaging::ycc {

/// How many columns and rows of pixels share one sample of colour: 1 or 2 each.
struct Subsampling {
    int x = 1;
    int y = 1;

    friend bool operator==(const Subsampling&, const Subsampling&) = default;
};

/// Samples of plane 0, 1 or 2 (Y, Cb, Cr) of a picture; odd sides are rounded up.
[[nodiscard]] Size samplesOf(Size picture, Subsampling subsampling, int plane);

/// A picture's brightness (Y) and its two colour differences (Cb, Cr), a plane each, in 8-bit
/// samples of the full range as JPEG files have them (ITU-T T.871). A sample of colour sits in the
/// middle of the pixels that share it.
class YccPlanes {
public:
    /// The memory starts out uninitialised. `room` is what the one who fills the planes may write
    /// to, in pixels: at least the picture. A few samples behind the end of any row may be read.
    /// Fails with OutOfMemory.
    static Result<YccPlanes> create(Size size, Subsampling subsampling, Size room);
    /// Planes that lie in memory of their own each, which is aligned as pixels are and large enough
    /// for the room and a few samples more.
    YccPlanes(Size size, Subsampling subsampling, Size room, std::array<PixelMemory, 3> memory);

    [[nodiscard]] Size size() const { return m_size; }
    [[nodiscard]] Subsampling subsampling() const { return m_subsampling; }
    [[nodiscard]] Size planeSize(int plane) const
    {
        return samplesOf(m_size, m_subsampling, plane);
    }
    /// Bytes from one row of a plane to the next: a multiple of 64, as every row's address is.
    [[nodiscard]] std::size_t rowBytes(int plane) const;

    [[nodiscard]] const std::uint8_t* row(int plane, int y) const;
    [[nodiscard]] std::uint8_t* row(int plane, int y);

private:
    Size m_size;
    Subsampling m_subsampling;
    std::array<std::size_t, 2> m_rowBytes; ///< of Y, and of Cb and Cr
    std::array<PixelMemory, 3> m_memory; ///< where each plane begins
};

} // namespace vellumine::imaging::ycc
