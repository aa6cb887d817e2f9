#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace vellumine::imaging {

/// Writes an opaque RGBA pixel as one number of 32 bits: loops over it become vector code, where
/// four single bytes would not. The samples are 0 to 255.
inline void storeOpaque(
    std::uint8_t* to, std::uint32_t red, std::uint32_t green, std::uint32_t blue)
{
    static_assert(
        std::endian::native == std::endian::little || std::endian::native == std::endian::big);
    const std::uint32_t pixel = std::endian::native == std::endian::little
        ? red | green << 8U | blue << 16U | 0xFF000000U
        : red << 24U | green << 16U | blue << 8U | 0xFFU;
    std::memcpy(to, &pixel, sizeof(pixel));
}

} // namespace vellumine::imaging
