#pragma once

#include "imaging/Bytes.h"

#include <cassert>
#include <cstdint>

namespace vellumine::imaging {

/// The two bytes at `offset`, most significant first. They must be there.
[[nodiscard]] inline std::uint16_t bigEndian16(ByteSpan bytes, std::size_t offset)
{
    assert(offset + 2 <= bytes.size());
    return static_cast<std::uint16_t>((std::to_integer<unsigned>(bytes[offset]) << 8U)
        | std::to_integer<unsigned>(bytes[offset + 1]));
}

/// The four bytes at `offset`, most significant first. They must be there.
[[nodiscard]] inline std::uint32_t bigEndian32(ByteSpan bytes, std::size_t offset)
{
    return (static_cast<std::uint32_t>(bigEndian16(bytes, offset)) << 16U)
        | bigEndian16(bytes, offset + 2);
}

inline void appendBigEndian16(ByteBuffer& bytes, std::uint16_t value)
{
    bytes.push_back(static_cast<std::byte>(value >> 8U));
    bytes.push_back(static_cast<std::byte>(value & 0xFFU));
}

inline void appendBigEndian32(ByteBuffer& bytes, std::uint32_t value)
{
    appendBigEndian16(bytes, static_cast<std::uint16_t>(value >> 16U));
    appendBigEndian16(bytes, static_cast<std::uint16_t>(value & 0xFFFFU));
}

} // namespace vellumine::imaging
