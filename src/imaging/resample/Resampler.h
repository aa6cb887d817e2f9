#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/resample/InterpolationQuality.h"

#include <array>
#include <cstdint>
#include <functional>

namespace vellumine::imaging {

enum class ResampleFilter {
    point,
    bilinear,
    bicubic, ///< Mitchell and Netravali's, B = C = 1/3
    lanczos3,
};

[[nodiscard]] ResampleFilter filterFor(InterpolationQuality quality);

/// Part of one row of a picture whose channels lie in planes of 16-bit samples.
struct PlanarRow {
    int y;
    int left; ///< first column
    int right; ///< one past the last column
    /// Where column 0 of each plane would be.
    std::array<std::uint16_t*, 4> planes;
};

using RowHandler = std::function<void(const PlanarRow&)>;

/// What a resampling reads from and writes to. Rows are asked for and delivered from the top down,
/// a part may be asked for more than once, and only a few rows are held at any moment.
struct ResampleJob {
    Size source;
    Size target;
    int planes; ///< 1 to 4, resampled alike and independently
    ResampleFilter filter;
    RowHandler read; ///< fills the row's columns
    RowHandler write; ///< takes the row's columns
};

/// Runs the job. When a picture shrinks, the filter is widened by the same factor, so that every
/// source pixel counts. Fails with OutOfMemory, or with Unsupported for sizes beyond the library's.
Result<void> resample(const ResampleJob& job);

} // namespace vellumine::imaging
