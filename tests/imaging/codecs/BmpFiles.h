#pragma once

#include "imaging/Bytes.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace vellumine::test {

/// Little-endian bytes, put together by hand.
class LittleEndianBytes {
public:
    LittleEndianBytes& add8(std::uint32_t value);
    LittleEndianBytes& add16(std::uint32_t value);
    LittleEndianBytes& add32(std::uint32_t value);
    LittleEndianBytes& add(imaging::ByteSpan bytes);
    LittleEndianBytes& add(std::string_view text);
    LittleEndianBytes& addZeros(std::size_t count);

    [[nodiscard]] const imaging::ByteBuffer& bytes() const { return m_bytes; }

private:
    imaging::ByteBuffer m_bytes;
};

[[nodiscard]] imaging::ByteBuffer bytesOf(std::initializer_list<int> values);

/// A bitmap file, field by field. What is not set is what the format's description says.
struct BmpFile {
    std::uint32_t infoBytes = 40;
    int width = 1;
    int height = 1; ///< negative: rows from the top
    int bits = 24;
    std::uint32_t compression = 0;
    std::vector<std::uint32_t> masks = {}; ///< red, green, blue, alpha
    std::optional<std::uint32_t> declaredColors = {};
    std::vector<std::array<int, 3>> palette = {}; ///< red, green, blue
    std::optional<std::uint32_t> pixelOffset = {};
    std::uint32_t pixelsPerMetreX = 2835;
    std::uint32_t pixelsPerMetreY = 2835;
    imaging::ByteBuffer pixels = {};
    /// From version 4 on: the kind of colour space, and what follows it in the header.
    std::uint32_t colorSpaceKind = 0x73524742; // 'sRGB'
    imaging::ByteBuffer colorSpaceFields = {};
    imaging::ByteBuffer profile = {}; ///< behind the pixels, for version 5

    [[nodiscard]] imaging::ByteBuffer bytes() const;
};

/// Rows of samples of `bits` bits each, the leftmost pixel first, packed and padded as bitmaps are.
[[nodiscard]] imaging::ByteBuffer packRows(
    int bits, const std::vector<std::vector<std::uint32_t>>& rowsInFileOrder);

} // namespace vellumine::test
