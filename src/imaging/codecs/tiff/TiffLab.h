#pragma once

#include "imaging/Image.h"
#include "imaging/codecs/tiff/TiffDirectory.h"

namespace vellumine::imaging::tiff {

/// Turns pixels that hold L*a*b* codes of one of the three Lab encodings into sRGB, in place;
/// an alpha sample stays. Lightness 100 becomes white. Fails with OutOfMemory.
Result<void> convertLabToSRgb(PixelBuffer& pixels, Colour encoding);

} // namespace vellumine::imaging::tiff
