#pragma once

#include "imaging/codecs/bmp/BmpHeader.h"
#include "imaging/colour/ColorSpace.h"

namespace vellumine::imaging::bmp {

/// What the header says about the colours: the embedded profile of version 5, the calibrated
/// primaries of versions 4 and 5; sRGB where it says nothing usable. A profile that lives in
/// another file is never looked for.
[[nodiscard]] ColorSpace colorSpaceOf(ByteSpan file, const Header& header);

} // namespace vellumine::imaging::bmp
