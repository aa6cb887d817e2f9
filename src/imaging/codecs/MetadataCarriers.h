#pragma once

#include "imaging/Bytes.h"

#include <string_view>

namespace vellumine::imaging {

/// What stands in front of an EXIF block in a JPEG segment and in some PNG chunks.
inline constexpr std::string_view exifSignature { "Exif\0\0", 6 };
/// What stands in front of an XMP packet in a JPEG segment.
inline constexpr std::string_view xmpSignature { "http://ns.adobe.com/xap/1.0/\0", 29 };
/// What stands in front of Photoshop's image resources in a JPEG segment.
inline constexpr std::string_view photoshopSignature { "Photoshop 3.0\0", 14 };

[[nodiscard]] bool startsWith(ByteSpan bytes, std::string_view prefix);
void append(ByteBuffer& bytes, std::string_view text);
void append(ByteBuffer& bytes, ByteSpan more);

/// The TIFF structure in `bytes`, with or without the signature in front; empty when there is none.
[[nodiscard]] ByteSpan exifBlock(ByteSpan bytes);

/// The IPTC datasets in `bytes`: either themselves or among Photoshop's image resources (number
/// 0x0404), with or without the signature in front. Empty when there are none.
[[nodiscard]] ByteSpan iptcBlock(ByteSpan bytes);

/// Photoshop image resources that hold nothing but the IPTC datasets.
[[nodiscard]] ByteBuffer photoshopResources(ByteSpan iptc);

} // namespace vellumine::imaging
