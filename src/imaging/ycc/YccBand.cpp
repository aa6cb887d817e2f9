#include "imaging/ycc/YccBand.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vellumine::imaging::ycc {

namespace {

constexpr std::size_t half = PlaneScaler::bandRows / 2;

void name(std::span<const std::uint8_t*> rows, const YccPlanes& planes, int plane, int first)
{
    const int last = planes.planeSize(plane).height - 1;
    for (const std::uint8_t*& row : rows) {
        row = planes.row(plane, std::min(first, last));
        ++first;
    }
}

} // namespace

YccBand bandAt(const YccPlanes& planes, int row)
{
    YccBand band {};
    name(band.brightness, planes, 0, row);
    int colorRow = row / planes.subsampling().y;
    for (PlaneScaler::Band& colors : band.colors) {
        name(std::span(colors).first<half>(), planes, 1, colorRow);
        name(std::span(colors).last<half>(), planes, 2, colorRow);
        colorRow += static_cast<int>(half);
    }
    return band;
}

} // namespace vellumine::imaging::ycc
