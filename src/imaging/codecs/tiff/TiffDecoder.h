#pragma once

#include "imaging/Image.h"
#include "imaging/codecs/tiff/TiffDirectory.h"
#include "imaging/codecs/tiff/TiffStream.h"

namespace vellumine::imaging::tiff {

/// The `wanted` part of the picture, reading only the strips and tiles that it touches. The
/// directory must have passed its check, its colour must not be Library and `wanted` must lie
/// inside the picture. Fails with Truncated, Malformed and OutOfMemory.
Result<PixelBuffer> decodeBlocks(
    const TiffReader& reader, const TiffDirectory& directory, Rect wanted);

} // namespace vellumine::imaging::tiff
