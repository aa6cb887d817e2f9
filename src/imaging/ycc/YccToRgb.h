#pragma once

#include "imaging/Image.h"
#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/UprightRows.h"
#include "imaging/ycc/YccPlanes.h"

namespace vellumine::imaging::ycc {

/// A part of the picture as 8-bit RGB without alpha; `part` must lie inside it. Colour is spread
/// over the pixels that share it by linear interpolation between the middles of the samples, and
/// converted by the formula of ITU-T T.871, all in integers and rounded as the JPEG library does
/// it. Fails with OutOfMemory.
[[nodiscard]] Result<PixelBuffer> toRgb(const YccPlanes& planes, Rect part);

/// The same as opaque RGBA, its RGB converted by the transform.
[[nodiscard]] Result<PixelBuffer> toRgba(
    const YccPlanes& planes, const ColorTransform& transform, Rect part);

/// The same of the whole picture. The target's size must be the picture's.
void toRgba(const YccPlanes& planes, const ColorTransform& transform, UprightRows& target);

} // namespace vellumine::imaging::ycc
