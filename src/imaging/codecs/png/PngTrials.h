#pragma once

#include "imaging/codecs/png/PngReduction.h"

#include <span>

namespace vellumine::imaging::png {

/// The picture data of a file: a zlib stream of one form's filtered rows.
struct Compressed {
    std::size_t form = 0; ///< index of the form that it is of
    ByteBuffer stream;
};

/// Tries filters on every form and keeps the smallest outcome. What is promising is found at a
/// moderate level, for large pictures on samples of their rows; only that is compressed as far as
/// it pays. Throws std::bad_alloc.
[[nodiscard]] Compressed smallest(std::span<const PackedPicture> forms);

/// One filter, the fastest level. Throws std::bad_alloc.
[[nodiscard]] ByteBuffer fastest(const PackedPicture& form);

} // namespace vellumine::imaging::png
