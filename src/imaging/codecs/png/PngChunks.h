#pragma once

#include "imaging/Bytes.h"
#include "imaging/codecs/Codec.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vellumine::imaging::png {

/// A chunk's type as a number: its four letters, the first one on top.
[[nodiscard]] constexpr std::uint32_t chunkType(std::string_view letters)
{
    std::uint32_t type = 0;
    for (const char letter : letters) {
        type = (type << 8U) | static_cast<unsigned char>(letter);
    }
    return type;
}

inline constexpr std::string_view signature { "\x89PNG\r\n\x1A\n", 8 };

/// One chunk that is there from its length to its checksum.
struct Chunk {
    std::uint32_t type = 0;
    ByteSpan data;
    ByteSpan checked; ///< type and data, what the checksum is of
    std::uint32_t checksum = 0;

    [[nodiscard]] bool isIntact() const;
    /// A decoder must understand it: the first letter is upper case.
    [[nodiscard]] bool isCritical() const { return (type & 0x20000000U) == 0; }
};

/// Walks the chunks of a file, up to the first one that is cut short.
class ChunkWalk {
public:
    /// The file must start with the signature.
    explicit ChunkWalk(ByteSpan file)
        : m_rest(file.subspan(signature.size()))
    {
    }

    [[nodiscard]] std::optional<Chunk> next();

private:
    ByteSpan m_rest;
};

enum class ColorType : std::uint8_t { grey = 0, rgb = 2, palette = 3, greyAlpha = 4, rgba = 6 };

/// What the file says about its pixels.
struct Header {
    Size size;
    int bitDepth = 8;
    ColorType colorType = ColorType::rgb;
    bool isInterlaced = false;
    bool hasTransparentColors = false; ///< a tRNS chunk that counts

    /// Of the decoded picture: palettes resolved, at least 8 bits, tRNS as alpha.
    [[nodiscard]] PixelLayout layout() const;
};

/// Fails with Malformed or Truncated.
[[nodiscard]] Result<Header> parseHeader(ByteSpan file);

/// Whether every critical chunk and the transparency, up to the end of the picture data, have the
/// checksums that they claim. A chunk that the file ends in does not count.
[[nodiscard]] bool pictureChunksAreIntact(ByteSpan file);

/// Appends a chunk with its length and checksum.
void appendChunk(ByteBuffer& file, std::string_view type, ByteSpan data);

} // namespace vellumine::imaging::png
