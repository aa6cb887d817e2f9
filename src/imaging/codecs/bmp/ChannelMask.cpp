#include "imaging/codecs/bmp/ChannelMask.h"

#include <bit>

namespace vellumine::imaging::bmp {

std::optional<ChannelMask> ChannelMask::create(std::uint32_t mask)
{
    if (mask != 0) {
        const int used = std::countr_zero(mask) + std::popcount(mask) + std::countl_zero(mask);
        if (used != 32) {
            return std::nullopt;
        }
    }
    return ChannelMask(mask);
}

ChannelMask::ChannelMask(std::uint32_t mask)
    : m_mask(mask)
    , m_shift(mask == 0 ? 0U : static_cast<std::uint32_t>(std::countr_zero(mask)))
    , m_maximum(mask >> m_shift)
{
    for (std::uint32_t value = 0; value < m_scaled.size() && value <= m_maximum; ++value) {
        m_scaled.at(value) = scale(value);
    }
}

std::uint8_t ChannelMask::scale(std::uint32_t value) const
{
    if (m_maximum == 0) {
        return 0;
    }
    const std::uint64_t scaled = std::uint64_t { value } * 255U + m_maximum / 2U;
    return static_cast<std::uint8_t>(scaled / m_maximum);
}

} // namespace vellumine::imaging::bmp
