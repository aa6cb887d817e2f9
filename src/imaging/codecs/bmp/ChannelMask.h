#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace vellumine::imaging::bmp {

/// One channel of a bit-field pixel, scaled to 8 bits: value * 255 / maximum, rounded to nearest.
class ChannelMask {
public:
    /// None when the bits of `mask` are not next to each other. A mask of 0 gives 0 always.
    [[nodiscard]] static std::optional<ChannelMask> create(std::uint32_t mask);

    [[nodiscard]] std::uint8_t operator()(std::uint32_t pixel) const
    {
        const std::uint32_t value = (pixel & m_mask) >> m_shift;
        return m_maximum < m_scaled.size() ? m_scaled[value] : scale(value);
    }

private:
    explicit ChannelMask(std::uint32_t mask);
    [[nodiscard]] std::uint8_t scale(std::uint32_t value) const;

    std::uint32_t m_mask;
    std::uint32_t m_shift;
    std::uint32_t m_maximum;
    std::array<std::uint8_t, 256> m_scaled {}; ///< of every value, where 8 bits hold them all
};

} // namespace vellumine::imaging::bmp
