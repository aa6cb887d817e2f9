#pragma once

#include "imaging/codecs/heic/HeicHandles.h"
#include "imaging/colour/ColorSpace.h"

namespace vellumine::imaging::heic {

/// What the numbers of a decoded RGB picture mean: its ICC profile, else its coded description
/// (ITU-T H.273), else what its EXIF block says, else sRGB.
[[nodiscard]] ColorSpace colorSpaceOf(const heif_image_handle* picture, ByteSpan exif);

/// The description of what the encoder writes: sRGB, BT.601's matrix, full range. Null when there
/// is no memory.
[[nodiscard]] HeifPointer<heif_color_profile_nclx> sRgbDescription();

} // namespace vellumine::imaging::heic
