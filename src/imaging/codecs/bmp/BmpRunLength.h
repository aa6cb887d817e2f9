#pragma once

#include "imaging/Image.h"
#include "imaging/codecs/bmp/BmpHeader.h"

namespace vellumine::imaging::bmp {

/// Run-length coded pixels of 4, 8 or 24 bits into RGB. Pixels that the code skips get the
/// palette's first colour (24 bits: black). Fails with Truncated when the code ends before the
/// picture without an end marker, and with Malformed when it jumps out of the picture.
[[nodiscard]] Result<void> readRunLength(
    const Header& header, const Palette& palette, ByteSpan pixels, PixelBuffer& target);

} // namespace vellumine::imaging::bmp
