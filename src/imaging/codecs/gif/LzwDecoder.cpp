#include "imaging/codecs/gif/LzwDecoder.h"

#include <cassert>

namespace vellumine::imaging::gif {

LzwDecoder::LzwDecoder(unsigned codeSize)
    : m_clearCode(static_cast<std::uint16_t>(1U << codeSize))
    , m_codeSize(codeSize)
{
    assert(codeSize >= 1 && codeSize <= 8);
    for (std::uint16_t pixel = 0; pixel < m_clearCode; ++pixel) {
        m_table.at(pixel) = { none, 1, static_cast<std::uint8_t>(pixel) };
    }
    clear();
}

void LzwDecoder::clear()
{
    m_width = m_codeSize + 1;
    m_next = static_cast<std::uint16_t>(m_clearCode + 2);
    m_previous = none;
}

LzwDecoder::Status LzwDecoder::decode(std::span<const std::uint8_t>& bytes)
{
    while (true) {
        while (m_bitCount < m_width) {
            if (bytes.empty()) {
                return Status::needsBytes;
            }
            m_bits |= static_cast<std::uint32_t>(bytes.front()) << m_bitCount;
            m_bitCount += 8;
            bytes = bytes.subspan(1);
        }
        const auto code = static_cast<std::uint16_t>(m_bits & ((1U << m_width) - 1U));
        m_bits >>= m_width;
        m_bitCount -= m_width;
        if (code != m_clearCode) {
            return decodeCode(code);
        }
        clear();
    }
}

LzwDecoder::Status LzwDecoder::decodeCode(std::uint16_t code)
{
    const auto endCode = static_cast<std::uint16_t>(m_clearCode + 1);
    if (code == endCode) {
        return Status::end;
    }
    if (m_previous == none) {
        if (code > endCode) {
            return Status::damaged;
        }
        expand(code);
        m_previous = code;
        return Status::pixels;
    }
    if (code > m_next) {
        return Status::damaged;
    }
    if (code == m_next) {
        // The code that is being made: the previous pixels and the first of them again.
        expand(m_previous);
        const std::size_t length = m_pixels.size();
        m_buffer.at(length) = m_buffer.front();
        m_pixels = std::span(m_buffer).first(length + 1);
    } else {
        expand(code);
    }
    // A full table stays as it is until it is cleared.
    if (m_next < tableSize) {
        const Entry& previous = m_table[m_previous];
        m_table[m_next]
            = { m_previous, static_cast<std::uint16_t>(previous.length + 1), m_buffer.front() };
        ++m_next;
        if (m_next == 1U << m_width && m_width < maximumWidth) {
            ++m_width;
        }
    }
    m_previous = code;
    return Status::pixels;
}

void LzwDecoder::expand(std::uint16_t code)
{
    const std::size_t length = m_table[code].length;
    for (std::size_t at = length; at-- > 0;) {
        const Entry& entry = m_table[code];
        m_buffer[at] = entry.last;
        code = entry.prefix;
    }
    m_pixels = std::span(m_buffer).first(length);
}

} // namespace vellumine::imaging::gif
