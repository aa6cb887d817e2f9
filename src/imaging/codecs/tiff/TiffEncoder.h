#pragma once

#include "imaging/codecs/Codec.h"

namespace vellumine::imaging::tiff {

/// The picture as strips of Deflate with horizontal differencing, at its own depth and model.
/// Alpha is written as what it is, premultiplied or straight. Fails with EncodingFailed and
/// OutOfMemory.
Result<ByteBuffer> encodePicture(const Image& image, const EncodeOptions& options);

} // namespace vellumine::imaging::tiff
