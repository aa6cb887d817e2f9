#pragma once

#include "imaging/codecs/Codec.h"

/// Windows and OS/2 bitmaps, every version of the header. Read into RGB of 8 bits, with straight
/// alpha where the file declares a mask for it. Written without run lengths in the fewest bits that
/// hold every pixel: a palette of 1, 4 or 8 bits, 24 bits, or 32 bits with an alpha mask where some
/// pixel is not opaque; a profile goes into a version 5 header. Grey profiles have no place in the
/// format and are left out.
namespace vellumine::imaging::bmp {

[[nodiscard]] bool sniff(ByteSpan file);
Result<ImageHeader> readHeader(ByteSpan file);
Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options);
Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options);

} // namespace vellumine::imaging::bmp
