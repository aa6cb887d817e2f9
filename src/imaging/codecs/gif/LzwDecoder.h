#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace vellumine::imaging::gif {

/// The decompression of GIF's pixels. Stricter than the library's, which makes pixels up for codes
/// that cannot be: a damaged picture must not pass for a sound one.
class LzwDecoder {
public:
    enum class Status {
        pixels, ///< some were decoded
        needsBytes, ///< the bytes are used up
        end, ///< the end code
        damaged,
    };

    /// `codeSize` is the number of bits that pixels have, 1 to 8.
    explicit LzwDecoder(unsigned codeSize);

    /// Decodes one code, taking bytes from the front of `bytes` as it needs them.
    [[nodiscard]] Status decode(std::span<const std::uint8_t>& bytes);

    /// What the last code gave; valid until the next is decoded.
    [[nodiscard]] std::span<const std::uint8_t> pixels() const { return m_pixels; }

private:
    static constexpr unsigned maximumWidth = 12;
    static constexpr std::size_t tableSize = 1U << maximumWidth;
    static constexpr std::uint16_t none = 0xFFFF;

    /// The pixels of an earlier code, and one more.
    struct Entry {
        std::uint16_t prefix;
        std::uint16_t length;
        std::uint8_t last;
    };

    void clear();
    [[nodiscard]] Status decodeCode(std::uint16_t code);
    void expand(std::uint16_t code);

    std::uint16_t m_clearCode;
    unsigned m_codeSize;
    unsigned m_width = 0; ///< bits of the next code
    std::uint16_t m_next = 0; ///< the code that is made next
    std::uint16_t m_previous = none;
    std::uint32_t m_bits = 0; ///< read, but not yet a code
    unsigned m_bitCount = 0;
    std::array<Entry, tableSize> m_table {};
    std::array<std::uint8_t, tableSize> m_buffer {};
    std::span<const std::uint8_t> m_pixels;
};

} // namespace vellumine::imaging::gif
