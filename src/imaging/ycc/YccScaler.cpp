#include "imaging/ycc/YccScaler.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vellumine::imaging::ycc {

namespace {

/// What PlaneScaler::make() wants to have room for.
constexpr std::size_t rowMultiple = 32;

PlaneScaler scalerOf(int planes, Size source, Subsampling shared, Size target)
{
    const auto [x, y] = shared;
    return { planes, { (source.width + x - 1) / x, (source.height + y - 1) / y },
        { static_cast<double>(source.width) / x, static_cast<double>(source.height) / y }, target };
}

} // namespace

YccScaler::YccScaler(Size source, Subsampling subsampling, Size target, RowHandler write)
    : m_subsampling(subsampling)
    , m_target(target)
    , m_write(std::move(write))
    , m_brightness(scalerOf(1, source, {}, target))
    , m_colors(scalerOf(2, source, subsampling, target))
{
    const std::size_t samples
        = (static_cast<std::size_t>(target.width) + rowMultiple - 1) / rowMultiple * rowMultiple;
    for (auto& row : m_row) {
        row.resize(samples);
    }
}

Result<YccScaler> YccScaler::create(
    Size source, Subsampling subsampling, Size target, RowHandler write)
{
    YccScaler scaler(source, subsampling, target, std::move(write));
    if (auto held = scaler.holdWhatIsNeeded(); !held) {
        return tl::unexpected(held.error());
    }
    return scaler;
}

/// A row waits for the plane that completes it last; until then the others hold theirs.
Result<void> YccScaler::holdWhatIsNeeded()
{
    int brightnessRows = 0;
    int colorRows = 0;
    for (int row = 0; row < m_target.height; ++row) {
        const int bands = lastBandOf(row) + 1;
        brightnessRows = std::max(
            brightnessRows, bands * YccBand::rows - m_brightness.verticalTaps().first(row));
        colorRows
            = std::max(colorRows, bands * colorRowsInBand() - m_colors.verticalTaps().first(row));
    }
    return m_brightness.hold(brightnessRows).and_then([&] { return m_colors.hold(colorRows); });
}

/// The band that completes a row of the result.
int YccScaler::lastBandOf(int row) const
{
    return std::max((m_brightness.verticalTaps().end(row) - 1) / YccBand::rows,
        (m_colors.verticalTaps().end(row) - 1) / colorRowsInBand());
}

void YccScaler::take(const YccBand& band)
{
    m_brightness.take(band.brightness);
    m_colors.take(band.colors[0]);
    if (m_subsampling.y == 1) {
        m_colors.take(band.colors[1]);
    }
    ++m_bandsTaken;
    while (m_rowsMade < m_target.height && lastBandOf(m_rowsMade) < m_bandsTaken) {
        make(m_rowsMade);
        ++m_rowsMade;
    }
}

void YccScaler::make(int row)
{
    auto& [y, cb, cr] = m_row;
    m_brightness.make(0, row, y.data());
    m_colors.make(0, row, cb.data());
    m_colors.make(1, row, cr.data());
    m_write({ row, 0, m_target.width, { y.data(), cb.data(), cr.data() } });
}

} // namespace vellumine::imaging::ycc
