#pragma once

#include "imaging/codecs/Codec.h"

namespace vellumine::imaging::webp {

[[nodiscard]] bool sniff(ByteSpan file);
Result<ImageHeader> readHeader(ByteSpan file);
Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options);

} // namespace vellumine::imaging::webp
