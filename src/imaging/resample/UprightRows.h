#pragma once

#include "imaging/Image.h"
#include "imaging/Orientation.h"
#include "imaging/PixelMemory.h"
#include "imaging/resample/Resampler.h"

#include <cstdint>

namespace vellumine::imaging {

/// Brings the rows of a picture that is drawn as it is stored to their places in the upright one.
/// Some rows are collected at a time, so that turning them stays in the cache and the picture is
/// never in memory twice.
class UprightRows {
public:
    /// `target` must be a bitmap of the upright picture, and outlive this. Fails with OutOfMemory.
    static Result<UprightRows> create(PixelBuffer& target, Orientation orientation);

    /// The size of the picture whose rows come.
    [[nodiscard]] Size storedSize() const { return m_storedSize; }

    /// Where the RGBA pixels of the row's columns go.
    [[nodiscard]] std::uint8_t* begin(const PlanarRow& row);
    /// To be called when they are there. The rows of the same columns come from the top down.
    void end(const PlanarRow& row);

private:
    UprightRows(PixelBuffer& target, Orientation orientation);

    PixelBuffer& m_target;
    Orientation m_orientation;
    Size m_storedSize;
    PixelMemory m_band; ///< null when nothing is turned
};

} // namespace vellumine::imaging
