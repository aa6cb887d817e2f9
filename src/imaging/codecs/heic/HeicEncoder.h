#pragma once

#include "imaging/codecs/Codec.h"

namespace vellumine::imaging::heic {

/// The picture as one HEVC still, 8 bits and 4:2:0: the profile that every decoder has, phones'
/// hardware included. Alpha is composed on white. The major brand is "heic". Fails with
/// Unsupported for CMYK, and with EncodingFailed and OutOfMemory.
Result<ByteBuffer> encodePicture(const Image& image, const EncodeOptions& options);

} // namespace vellumine::imaging::heic
