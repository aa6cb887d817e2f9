#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"

#include <cstdint>

namespace vellumine::imaging {

/// What a decode may ask for. Checked against the header before any pixel is allocated.
struct Limits {
    std::uint64_t maximumPixels = 268'402'689; ///< 16,383 squared, what a WebP file can hold
    std::uint32_t maximumSide = 65'535;
    std::uint64_t maximumBytes = std::uint64_t { 1 } << 30; ///< for one decoded picture

    /// The limits above with `maximumBytes` set to a quarter of the memory that this process can
    /// have: the machine's, or what it was given of that.
    [[nodiscard]] static Limits forThisMachine();

    /// Fails with LimitExceeded when a picture of that size and depth is too large, and with
    /// Malformed when a side is below 1. The sides are 64 bits wide so that a header's numbers can
    /// be checked before they are narrowed.
    [[nodiscard]] Result<void> check(
        std::int64_t width, std::int64_t height, int bytesPerPixel) const;
};

} // namespace vellumine::imaging
