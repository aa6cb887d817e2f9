#pragma once

#include "imaging/Image.h"
#include "imaging/codecs/bmp/BmpHeader.h"

namespace vellumine::imaging::bmp {

/// The row of the picture that the file's row `fileRow` is.
[[nodiscard]] inline int pictureRow(const Header& header, int fileRow)
{
    return header.rowOrder == RowOrder::topDown ? fileRow : header.size.height - 1 - fileRow;
}

/// The bytes that pixels without run lengths take, without the padding behind the last row.
[[nodiscard]] std::uint64_t plainBytes(const Header& header);

/// Rows of palette indexes or of 24-bit pixels into RGB. `pixels` holds plainBytes().
void readIndexed(
    const Header& header, const Palette& palette, ByteSpan pixels, PixelBuffer& target);
void readRgb24(const Header& header, ByteSpan pixels, PixelBuffer& target);

/// 16-bit and 32-bit pixels into RGB, or into RGBA where there is an alpha mask. Fails with
/// Malformed for impossible masks.
[[nodiscard]] Result<void> readMasked(const Header& header, ByteSpan pixels, PixelBuffer& target);

} // namespace vellumine::imaging::bmp
