#pragma once

#include "imaging/codecs/jpeg/JpegCoefficients.h"
#include "imaging/ycc/YccPlanes.h"

#include <cstddef>
#include <cstdio>
#include <optional>

#include <jpeglib.h>

namespace vellumine::imaging::jpeg {

/// How the colour of the file is stored, where it has brightness and colour in one of the forms
/// that planes can hold: not for grey, RGB and CMYK files and for rare samplings. To be called when
/// the header was read.
[[nodiscard]] std::optional<ycc::Subsampling> subsampling(const jpeg_decompress_struct& library);

/// Rows of pixels that the library gives in one call: 8 to 32.
[[nodiscard]] int rowsOfCall(const jpeg_decompress_struct& library);

/// Planes with so many rows for the library to fill: it writes whole blocks. To be called after
/// jpeg_start_decompress.
[[nodiscard]] Result<ycc::YccPlanes> makePlanes(
    const jpeg_decompress_struct& library, ycc::Subsampling subsampling, int rows);

/// Planes for all rows of the picture, which are to be read from the top down. Where the library
/// has collected the picture's coefficients, they take the place of those.
[[nodiscard]] Result<ycc::YccPlanes> makePlanes(const jpeg_decompress_struct& library,
    ycc::Subsampling subsampling, const Coefficients& coefficients);

/// Reads the next rows of the picture, so many as the library gives, from a row of the planes on.
/// To be called inside Errors::run, after jpeg_start_decompress with `raw_data_out` set.
void readPlaneRows(jpeg_decompress_struct& library, ycc::YccPlanes& planes, int row);

/// Writes the next rows of the picture, so many as the library takes (8 or 16), from a row of the
/// planes on, which hold whole blocks. To be called inside Errors::run, after jpeg_start_compress
/// with `raw_data_in` set.
void writePlaneRows(jpeg_compress_struct& library, const ycc::YccPlanes& planes, int row);

} // namespace vellumine::imaging::jpeg
