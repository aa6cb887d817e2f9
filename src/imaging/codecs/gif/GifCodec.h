#pragma once

#include "imaging/codecs/Codec.h"

/// GIF. The first picture only, composed on the logical screen: RGB of 8 bits where it covers the
/// screen and names no transparent colour, else RGBA with straight alpha. Written with the exact
/// colours where 256 hold them, else with a palette made for the picture; alpha becomes one
/// transparent colour (below one half). Comments are read and written, other metadata and profiles
/// have no place.
namespace vellumine::imaging::gif {

[[nodiscard]] bool sniff(ByteSpan file);
Result<ImageHeader> readHeader(ByteSpan file);
Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options);
Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options);

} // namespace vellumine::imaging::gif
