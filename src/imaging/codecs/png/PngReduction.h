#pragma once

#include "imaging/Image.h"
#include "imaging/codecs/png/PngChunks.h"

#include <vector>

namespace vellumine::imaging::png {

/// A picture as the chunks hold it, before filtering and compressing.
struct PackedPicture {
    Size size;
    ColorType colorType = ColorType::rgb;
    int bitDepth = 8;
    ByteBuffer palette; ///< of PLTE; empty without one
    ByteBuffer transparency; ///< of tRNS; empty when every entry of the palette is opaque
    std::size_t rowBytes = 0;
    ByteBuffer rows; ///< `size.height` of them

    /// What filters count as one pixel: its bytes, at least one.
    [[nodiscard]] std::size_t filterDistance() const;
    [[nodiscard]] ByteSpan row(int y) const
    {
        return ByteSpan(rows).subspan(static_cast<std::size_t>(y) * rowBytes, rowBytes);
    }
};

/// What a profile that goes into the file allows: it must be of the file's colour type, and a
/// palette counts as RGB.
struct AllowedReductions {
    bool toGrey = true;
    bool toPalette = true;
};

/// The picture as it is, but for alpha that is opaque everywhere. Fails with Unsupported for CMYK
/// and with OutOfMemory; throws std::bad_alloc as well.
[[nodiscard]] Result<PackedPicture> packed(const Image& image);

/// The lossless forms that are worth compressing, the likeliest first; at least one. Samples of
/// 16 bits that only repeat their 8, alpha that is opaque, colour that is grey, and colours that
/// fit in a palette give smaller forms. Fails as packed() does.
[[nodiscard]] Result<std::vector<PackedPicture>> reduced(
    const Image& image, AllowedReductions allowed);

} // namespace vellumine::imaging::png
