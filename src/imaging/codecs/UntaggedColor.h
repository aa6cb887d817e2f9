#pragma once

#include "imaging/Bytes.h"
#include "imaging/PixelLayout.h"
#include "imaging/colour/ColorSpace.h"

namespace vellumine::imaging {

/// What the numbers mean where the file has no usable profile and describes its colours in no
/// other way of its format: RGB is Adobe RGB where the EXIF block says so, else sRGB; grey and
/// CMYK are those without a statement. `exif` is the block, empty without one, or a TIFF file.
[[nodiscard]] ColorSpace untaggedColorSpace(ColorModel model, ByteSpan exif);

} // namespace vellumine::imaging
