#include "imaging/codecs/ColorTable.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace vellumine::imaging {

namespace {

constexpr std::size_t maximumColors = 256;

/// Weights of Rec. 709 in thousandths.
int brightness(ColorTable::Color color)
{
    return 213 * color[0] + 715 * color[1] + 72 * color[2];
}

} // namespace

ColorTable::Color colorAt(const std::uint8_t* row, int x, PixelLayout layout)
{
    const std::uint8_t* pixel = row + static_cast<std::ptrdiff_t>(x) * layout.channels();
    const std::uint8_t alpha = hasAlpha(layout.alpha) ? pixel[layout.colorChannels()] : 255;
    if (layout.model == ColorModel::grey) {
        return { pixel[0], pixel[0], pixel[0], alpha };
    }
    return { pixel[0], pixel[1], pixel[2], alpha };
}

std::size_t ColorTable::slot(Color color) const
{
    const auto key = std::bit_cast<std::uint32_t>(color);
    std::size_t slot = (key * 0x9E3779B1U) >> 22U;
    while (m_isUsed[slot] && m_keys[slot] != key) {
        slot = (slot + 1) % tableSize;
    }
    return slot;
}

bool ColorTable::add(Color color)
{
    const std::size_t at = slot(color);
    if (m_isUsed[at]) {
        return true;
    }
    if (m_colors.size() == maximumColors) {
        return false;
    }
    m_isUsed[at] = true;
    m_keys[at] = std::bit_cast<std::uint32_t>(color);
    m_colors.push_back(color);
    return true;
}

void ColorTable::sort()
{
    const auto order
        = [](Color color) { return std::tuple(color[3] == 255, brightness(color), color); };
    std::ranges::sort(m_colors, {}, order);
    for (std::size_t i = 0; i < m_colors.size(); ++i) {
        m_numbers[slot(m_colors[i])] = static_cast<std::uint8_t>(i);
    }
}

std::optional<ColorTable> ColorTable::of(const Image& image)
{
    ColorTable table;
    const PixelLayout layout = image.layout();
    std::optional<Color> last;
    for (int y = 0; y < image.height(); ++y) {
        const std::uint8_t* row = image.row8(y);
        for (int x = 0; x < image.width(); ++x) {
            const Color color = colorAt(row, x, layout);
            if (color != last && !table.add(color)) {
                return std::nullopt;
            }
            last = color;
        }
    }
    table.sort();
    return table;
}

} // namespace vellumine::imaging
