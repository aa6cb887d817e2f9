#pragma once

#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/UprightRows.h"

#include <cstdint>
#include <vector>

namespace vellumine::imaging::ycc {

/// Turns resampled rows of brightness and colour differences into opaque RGBA.
class YccRowWriter {
public:
    /// `transform` takes 8-bit RGB.
    YccRowWriter(UprightRows& target, const ColorTransform& transform);

    /// The row's samples are 256 times as large as 8-bit ones.
    void write(const PlanarRow& row);

private:
    UprightRows& m_target;
    const ColorTransform& m_transform;
    std::vector<std::uint8_t> m_rgb; ///< one row, where colours are converted
};

} // namespace vellumine::imaging::ycc
