#pragma once

#include "imaging/Bytes.h"
#include "imaging/colour/ColorSpace.h"

namespace vellumine::imaging::png {

/// The colour space that the file's chunks describe: its code points (cICP), else its profile, else
/// what the sRGB chunk says, else gAMA and cHRM, else what the EXIF block says, else sRGB or grey.
/// What is damaged or of the wrong model counts as absent.
[[nodiscard]] ColorSpace colorSpaceOf(ByteSpan file, ColorModel model, ByteSpan exif);

} // namespace vellumine::imaging::png
