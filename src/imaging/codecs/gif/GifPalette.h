#pragma once

#include "imaging/Image.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vellumine::imaging::gif {

/// A picture as indexes into a palette.
struct IndexedImage {
    struct Color {
        std::uint8_t red = 0;
        std::uint8_t green = 0;
        std::uint8_t blue = 0;
    };
    Size size;
    std::vector<Color> palette; ///< 1 to 256 colours
    std::optional<std::uint8_t> transparentIndex;
    std::vector<std::uint8_t> indexes; ///< row by row without gaps
};

/// The indexed form of an 8-bit RGBA picture with straight alpha. Alpha below one half becomes the
/// transparent colour, any other opaque. The colours are exact where they fit into 256 together
/// with the transparent one; else a palette is made for the picture and its error dithered. Fails
/// with OutOfMemory and EncodingFailed.
[[nodiscard]] Result<IndexedImage> indexed(const Image& rgba);

} // namespace vellumine::imaging::gif
