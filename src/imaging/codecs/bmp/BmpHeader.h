#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/metadata/Resolution.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace vellumine::imaging::bmp {

inline constexpr std::size_t fileHeaderBytes = 14;

/// Sizes of the information headers, which are also their names.
inline constexpr std::uint32_t coreHeader = 12; ///< OS/2 1.x
inline constexpr std::uint32_t infoHeader = 40;
inline constexpr std::uint32_t v2Header = 52; ///< with colour masks
inline constexpr std::uint32_t v3Header = 56; ///< with an alpha mask
inline constexpr std::uint32_t os2Header = 64; ///< OS/2 2.x; may be cut down to 16
inline constexpr std::uint32_t v4Header = 108; ///< with a colour space
inline constexpr std::uint32_t v5Header = 124; ///< with a profile

enum class Compression { none, runLength4, runLength8, runLength24, bitFields };

enum class RowOrder { bottomUp, topDown };

/// Which bits of a 16-bit or 32-bit pixel belong to which channel; 0 is an absent channel.
struct ChannelMasks {
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
    std::uint32_t alpha = 0;
};

struct PaletteColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/// What stands before the pixels.
struct Header {
    std::size_t infoOffset = 0; ///< where the information header starts in the file
    std::uint32_t infoBytes = 0; ///< its size, one of those above
    Size size;
    RowOrder rowOrder = RowOrder::bottomUp;
    int bitsPerPixel = 0; ///< 1, 2, 4, 8, 16, 24 or 32
    Compression compression = Compression::none;
    ChannelMasks masks; ///< for 16 and 32 bits
    std::size_t paletteOffset = 0; ///< from the start of the file
    std::uint32_t declaredColors = 0; ///< in the palette, as the file says; 0 means all
    std::optional<Resolution> resolution;
    std::size_t pixelOffset = 0; ///< from the start of the file; may lie beyond its end

    [[nodiscard]] bool isIndexed() const { return bitsPerPixel <= 8; }
    [[nodiscard]] bool isRunLength() const
    {
        return compression != Compression::none && compression != Compression::bitFields;
    }
};

/// For 1 to 8 bits; indexes that the file gives no colour are black.
using Palette = std::array<PaletteColor, 256>;

/// Whether a bitmap starts here: the signature and an information header of a known size. Sees
/// through the header of an OS/2 bitmap array, whose first bitmap counts.
[[nodiscard]] bool hasSignature(ByteSpan file);

/// Fails with Malformed, with Truncated when the file ends inside its headers, and with
/// Unsupported for embedded JPEG and PNG, Huffman coding and unknown headers.
[[nodiscard]] Result<Header> parseHeader(ByteSpan file);

/// The palette of an indexed picture. Fails with Malformed when there is none, or when the file is
/// too short for the one it declares.
[[nodiscard]] Result<Palette> readPalette(ByteSpan file, const Header& header);

} // namespace vellumine::imaging::bmp
