#pragma once

#include "imaging/Bytes.h"
#include "imaging/Geometry.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace vellumine::test {

using GifColors = std::vector<std::array<int, 3>>;

/// One picture of a GIF file, written without any compression.
struct GifPicture {
    imaging::Rect place;
    std::vector<std::uint8_t> indexes = {}; ///< row by row from the top
    bool isInterlaced = false;
    std::optional<int> transparentIndex = {};
    GifColors palette = {}; ///< of its own; a power of two of colours
};

/// A GIF file, field by field.
struct GifFile {
    imaging::Size screen;
    GifColors palette = {}; ///< for all pictures; a power of two of colours
    imaging::ByteBuffer extension = {}; ///< stands before the first picture
    std::vector<GifPicture> pictures = {};

    /// Ends with the end of the last picture's blocks and the file's end marker, a byte each.
    [[nodiscard]] imaging::ByteBuffer bytes() const;
};

/// The compressed form of codes of nine bits, as blocks behind the code size of 8.
[[nodiscard]] imaging::ByteBuffer gifCodes(const std::vector<std::uint32_t>& codes);

inline constexpr std::uint32_t gifClear = 256;
inline constexpr std::uint32_t gifEnd = 257;

} // namespace vellumine::test
