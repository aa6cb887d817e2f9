#include "imaging/codecs/tiff/TiffPalette.h"

#include <algorithm>
#include <span>

namespace vellumine::imaging::tiff {

Result<Palette> Palette::read(TIFF* tiff, const TiffDirectory& directory)
{
    std::array<std::uint16_t*, 3> maps {};
    if (TIFFGetField(tiff, TIFFTAG_COLORMAP, maps.data(), &maps[1], &maps[2]) != 1) {
        return failure(Error::Kind::malformed, "a palette picture without a colour map");
    }
    const std::size_t count = std::size_t { 1 } << directory.sample.bits;
    // Colour maps are 16 bits deep, but some writers put 8-bit numbers into them.
    const bool is8Bit = std::ranges::all_of(maps, [count](const std::uint16_t* map) {
        return std::ranges::all_of(
            std::span(map, count), [](std::uint16_t value) { return value < 256; });
    });
    const bool to8Bit = directory.layout.bitsPerComponent == 8;
    Palette palette;
    for (std::size_t channel = 0; channel < maps.size(); ++channel) {
        const std::span map(maps[channel], count);
        auto& values = palette.m_channels[channel];
        values.resize(count);
        std::ranges::transform(map, values.begin(), [is8Bit, to8Bit](std::uint16_t value) {
            const unsigned deep = is8Bit ? value * 257U : value;
            return static_cast<std::uint16_t>(to8Bit ? (deep + 128U) / 257U : deep);
        });
    }
    return palette;
}

} // namespace vellumine::imaging::tiff
