#include "imaging/codecs/png/PngPalette.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace vellumine::imaging::png {

namespace {

constexpr std::size_t maximumColors = 256;

/// Weights of Rec. 709 in thousandths.
int brightness(Palette::Color color)
{
    return 213 * color[0] + 715 * color[1] + 72 * color[2];
}

} // namespace

Palette::Color colorAt(const std::uint8_t* row, int x, PixelLayout layout)
{
    const std::uint8_t* pixel = row + static_cast<std::ptrdiff_t>(x) * layout.channels();
    const std::uint8_t alpha = hasAlpha(layout.alpha) ? pixel[layout.colorChannels()] : 255;
    if (layout.model == ColorModel::grey) {
        return { pixel[0], pixel[0], pixel[0], alpha };
    }
    return { pixel[0], pixel[1], pixel[2], alpha };
}

std::size_t Palette::slot(Color color) const
{
    const auto key = std::bit_cast<std::uint32_t>(color);
    std::size_t slot = (key * 0x9E3779B1U) >> 22U;
    while (m_isUsed[slot] && m_keys[slot] != key) {
        slot = (slot + 1) % tableSize;
    }
    return slot;
}

bool Palette::add(Color color)
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

void Palette::sort()
{
    const auto order
        = [](Color color) { return std::tuple(color[3] == 255, brightness(color), color); };
    std::ranges::sort(m_colors, {}, order);
    for (std::size_t i = 0; i < m_colors.size(); ++i) {
        m_numbers[slot(m_colors[i])] = static_cast<std::uint8_t>(i);
    }
}

std::optional<Palette> Palette::of(const Image& image)
{
    Palette palette;
    const PixelLayout layout = image.layout();
    std::optional<Color> last;
    for (int y = 0; y < image.height(); ++y) {
        const std::uint8_t* row = image.row8(y);
        for (int x = 0; x < image.width(); ++x) {
            const Color color = colorAt(row, x, layout);
            if (color != last && !palette.add(color)) {
                return std::nullopt;
            }
            last = color;
        }
    }
    palette.sort();
    return palette;
}

} // namespace vellumine::imaging::png
