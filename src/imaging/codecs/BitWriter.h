#pragma once

#include <cstddef>

namespace vellumine::imaging {

/// Puts numbers of `bitDepth` bits next to each other, the first one into the highest bits.
class BitWriter {
public:
    BitWriter(std::byte* bytes, int bitDepth)
        : m_bytes(bytes)
        , m_bitDepth(bitDepth)
    {
    }

    /// `value` must be less than 2 to the power of the depth.
    void write(unsigned value)
    {
        m_used += m_bitDepth;
        *m_bytes |= static_cast<std::byte>(value << static_cast<unsigned>(8 - m_used));
        if (m_used == 8) {
            ++m_bytes;
            m_used = 0;
        }
    }

private:
    std::byte* m_bytes;
    int m_bitDepth;
    int m_used = 0;
};

} // namespace vellumine::imaging
