#pragma once

#include "imaging/Bytes.h"
#include "imaging/Geometry.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vellumine::test {

/// A PNG file of a kind that the product itself does not write.
struct PngRecipe {
    imaging::Size size;
    int colorType = 0; ///< as in the file
    int bitDepth = 8;
    enum class Interlacing { none, adam7 };
    Interlacing interlacing = Interlacing::none;
    std::vector<std::uint8_t> palette {}; ///< red, green, blue
    std::string chunks {}; ///< whole chunks to put before the picture data, see chunk()
    std::string chunksBehind {}; ///< whole chunks to put behind it
    /// Sample of x, y and channel, below 2 to the bit depth.
    std::function<unsigned(int, int, int)> sample;
};

[[nodiscard]] imaging::ByteBuffer pngFile(const PngRecipe& recipe);

/// A chunk with its length and checksum.
[[nodiscard]] std::string chunk(std::string_view type, std::string_view data);

/// Offset of the chunk's length field, the file's size when there is no such chunk.
[[nodiscard]] std::size_t findChunk(imaging::ByteSpan file, std::string_view type);

/// The content of the first chunk of the type; empty when there is none.
[[nodiscard]] std::string chunkContent(imaging::ByteSpan file, std::string_view type);

/// A zlib stream of the text.
[[nodiscard]] std::string zlibStream(std::string_view text);

} // namespace vellumine::test
