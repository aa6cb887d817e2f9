#pragma once

#include "imaging/Image.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace vellumine::imaging {

/// The colours of a picture, each with its number: what a palette is made of.
class ColorTable {
public:
    using Color = std::array<std::uint8_t, 4>; ///< red, green, blue, alpha

    /// The table of a picture of 8 bits, grey or RGB, without alpha or with straight alpha last;
    /// none when it has more than 256 colours. Those that are not opaque come first, so that the
    /// list of alpha values ends with them; then the dark before the bright, so that what looks
    /// alike has numbers that are near each other.
    [[nodiscard]] static std::optional<ColorTable> of(const Image& image);

    [[nodiscard]] const std::vector<Color>& colors() const { return m_colors; }
    /// The number of a colour of the picture.
    [[nodiscard]] std::uint8_t number(Color color) const { return m_numbers[slot(color)]; }

private:
    /// Room for twice the colours that there can be, so that a free slot is near.
    static constexpr std::size_t tableSize = 1024;

    [[nodiscard]] std::size_t slot(Color color) const;
    bool add(Color color);
    void sort();

    std::vector<Color> m_colors;
    std::array<std::uint32_t, tableSize> m_keys {};
    std::array<bool, tableSize> m_isUsed {};
    std::array<std::uint8_t, tableSize> m_numbers {};
};

/// Pixel x of a row of such a picture as a colour.
[[nodiscard]] ColorTable::Color colorAt(const std::uint8_t* row, int x, PixelLayout layout);

} // namespace vellumine::imaging
