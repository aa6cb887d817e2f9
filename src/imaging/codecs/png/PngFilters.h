#pragma once

#include "imaging/codecs/png/PngReduction.h"

namespace vellumine::imaging::png {

/// How the filter of each row is chosen: one and the same for all, or the one whose result looks
/// easiest to compress.
enum class FilterStrategy : std::uint8_t {
    none,
    sub,
    up,
    average,
    paeth,
    smallestSum, ///< of the filtered bytes taken as signed numbers: the advice of the PNG standard
    leastEntropy, ///< of the filtered bytes
    fewestPairs, ///< distinct pairs of neighbouring filtered bytes
};

/// Rows of a picture, from the first to before the last.
struct RowRange {
    int first = 0;
    int end = 0;
};

/// Appends the rows, each behind the number of its filter.
void appendFiltered(
    ByteBuffer& bytes, const PackedPicture& picture, RowRange rows, FilterStrategy strategy);

} // namespace vellumine::imaging::png
