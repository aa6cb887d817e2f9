#pragma once

#include "imaging/Image.h"
#include "imaging/codecs/tiff/TiffDirectory.h"
#include "imaging/codecs/tiff/TiffStream.h"

namespace vellumine::imaging::tiff {

/// The whole picture through the library's own conversion to 8-bit RGB, for colour that is not
/// worth an implementation of ours. The stored rows stay in their order. Fails with
/// Truncated, Malformed, OutOfMemory, and with Unsupported for what the library cannot convert
/// either.
Result<PixelBuffer> decodeThroughLibrary(const TiffReader& reader, const TiffDirectory& directory);

} // namespace vellumine::imaging::tiff
