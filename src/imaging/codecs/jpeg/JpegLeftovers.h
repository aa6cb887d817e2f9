#pragma once

#include "imaging/Error.h"

#include <cstdio>

#include <jpeglib.h>

namespace vellumine::imaging::jpeg {

/// What stands between the last block that was decoded and the next marker. More than encoders are
/// known to put there is picture data that found no block: then the decoder went astray before, and
/// what it made of the data up to here is not the picture.

/// Whether the bytes that the library has just found behind the data of a scan or of a restart
/// interval are such data. To be called when it warns of extraneous data; false before the first
/// scan.
[[nodiscard]] bool isDataLost(const jpeg_decompress_struct& library);

/// Fails with Malformed, or with Truncated where the file has no more markers, when such data is
/// behind the last row of a file with a single scan, where the library does not look. There is
/// nothing to say before the last row was read, nor of files with several scans, which have been
/// read to their end before the first row.
[[nodiscard]] Result<void> checkBehindLastRow(const jpeg_decompress_struct& library);

} // namespace vellumine::imaging::jpeg
