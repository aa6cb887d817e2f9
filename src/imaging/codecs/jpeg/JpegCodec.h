#pragma once

#include "imaging/codecs/Codec.h"

namespace vellumine::imaging::jpeg {

[[nodiscard]] bool sniff(ByteSpan file);
Result<ImageHeader> readHeader(ByteSpan file);
Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options);
Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options);
Result<Image> roundTrip(const Image& image, const EncodeOptions& options, ByteSpan file, Rect part);

} // namespace vellumine::imaging::jpeg
