#pragma once

#include "imaging/codecs/Codec.h"

namespace vellumine::imaging::tiff {

/// The picture as strips of Deflate with horizontal differencing, at its own depth. Alpha is
/// written as what it is, premultiplied or straight, where some pixel is not opaque. An opaque
/// picture that is grey throughout has one sample, unless a profile for colour goes with it. Fails
/// with EncodingFailed and OutOfMemory.
Result<ByteBuffer> encodePicture(const Image& image, const EncodeOptions& options);

} // namespace vellumine::imaging::tiff
