#pragma once

#include "imaging/codecs/Codec.h"

/// HEIC and HEIF through libheif. The container's own rotation, mirror and crop are applied by the
/// decoder; an EXIF orientation inside is never applied again.
namespace vellumine::imaging::heic {

/// A HEIF container whose picture is HEVC-coded, by its brands.
[[nodiscard]] bool sniffHeic(ByteSpan file);
/// Any other HEIF container.
[[nodiscard]] bool sniffHeif(ByteSpan file);
Result<ImageHeader> readHeader(ByteSpan file);
Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options);
Result<ByteBuffer> encodeHeic(const Image& image, const EncodeOptions& options);
Result<ByteBuffer> encodeHeif(const Image& image, const EncodeOptions& options);

/// Loads the codecs that newer versions of the library keep in files of their own, for a process
/// that is about to give up opening files. Others need not call it.
void loadCodecs();

} // namespace vellumine::imaging::heic
