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

/// The whole picture through the library's own conversion to 8-bit RGB, for colour that is not
/// worth an implementation of ours. The stored rows stay in their order. Fails as above, and with
/// Unsupported for what the library cannot convert either.
Result<PixelBuffer> decodeThroughLibrary(const TiffReader& reader, const TiffDirectory& directory);

} // namespace vellumine::imaging::tiff
