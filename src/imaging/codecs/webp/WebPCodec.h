#pragma once

#include "imaging/codecs/Codec.h"

/// WebP, reading only. RGB of 8 bits, or RGBA with straight alpha where the file declares alpha. A
/// part of a still picture is decoded without the rest. Of an animation the first frame counts,
/// composed on a transparent canvas.
namespace vellumine::imaging::webp {

[[nodiscard]] bool sniff(ByteSpan file);
Result<ImageHeader> readHeader(ByteSpan file);
Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options);

} // namespace vellumine::imaging::webp
