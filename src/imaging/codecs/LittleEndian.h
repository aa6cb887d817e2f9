#pragma once

#include "imaging/Bytes.h"

#include <cassert>
#include <cstdint>

namespace vellumine::imaging {

/// The byte at `at`, which must lie inside `bytes`.
[[nodiscard]] inline std::uint8_t byteAt(ByteSpan bytes, std::size_t at)
{
    assert(at < bytes.size());
    return std::to_integer<std::uint8_t>(bytes[at]);
}

/// The little-endian number of 16 bits at `at`; both of its bytes must lie inside `bytes`.
[[nodiscard]] inline std::uint16_t littleEndian16(ByteSpan bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(byteAt(bytes, at) | byteAt(bytes, at + 1) << 8);
}

/// The little-endian number of 32 bits at `at`; its four bytes must lie inside `bytes`.
[[nodiscard]] inline std::uint32_t littleEndian32(ByteSpan bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(littleEndian16(bytes, at))
        | static_cast<std::uint32_t>(littleEndian16(bytes, at + 2)) << 16U;
}

} // namespace vellumine::imaging
