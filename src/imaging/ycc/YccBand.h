#pragma once

#include "imaging/resample/PlaneScaler.h"
#include "imaging/ycc/YccPlanes.h"

#include <array>
#include <cstdint>

namespace vellumine::imaging::ycc {

/// A few rows of a photograph in planes, one after another: sixteen of brightness, and those of the
/// colour differences that lie beside them. Only the addresses: whoever has the rows keeps them.
struct YccBand {
    static constexpr int rows = PlaneScaler::bandRows;

    PlaneScaler::Band brightness;
    /// Eight rows of blueness, then eight of redness; the second time only where no two rows share
    /// a colour.
    std::array<PlaneScaler::Band, 2> colors;
};

/// The band that begins at a row, which is a multiple of 16. Where the planes end their last rows
/// go on.
[[nodiscard]] YccBand bandAt(const YccPlanes& planes, int row);

} // namespace vellumine::imaging::ycc
