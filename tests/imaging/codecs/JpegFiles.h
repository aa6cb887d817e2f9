#pragma once

#include "imaging/Image.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <jpeglib.h>

namespace vellumine::test {

/// A JPEG file of a kind that the product itself does not write.
struct JpegRecipe {
    J_COLOR_SPACE fileSpace = JCS_YCbCr;
    /// Sampling factors of the first component; the others have 1 x 1, unless they are told to have
    /// more rows.
    int horizontalSampling = 1;
    int verticalSampling = 1;
    int verticalSamplingOfOthers = 1;
    enum class Coding { baseline, progressive, arithmetic, separateScans };
    Coding coding = Coding::baseline;
    int quality = 92;
    unsigned restartInterval = 0; ///< in MCUs, 0 for none
    enum class Adobe { libraryDefault, without };
    Adobe adobe = Adobe::libraryDefault;
    std::vector<std::pair<int, std::string>> markers {}; ///< number (0xE0 + n) and content
};

/// The file of a picture without alpha and with 8 bits. The samples go to the library as they are.
[[nodiscard]] imaging::ByteBuffer jpegFile(const imaging::Image& image, const JpegRecipe& recipe);

/// Offset of the first byte after the header of the first scan.
[[nodiscard]] std::size_t pictureDataStart(imaging::ByteSpan file);

/// Offset of the n-th scan header, counted from 0; the file's length where there are fewer.
[[nodiscard]] std::size_t scanHeader(imaging::ByteSpan file, int n);

/// A progressive file whose last scans, with the finest bits of brightness, were never written.
[[nodiscard]] imaging::ByteBuffer endedEarlyOnPurpose(imaging::ByteBuffer progressive);

} // namespace vellumine::test
