#include "imaging/ycc/BlockBands.h"

#include "imaging/VectorClones.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

namespace vellumine::imaging::ycc {

namespace {

constexpr Subsampling coarse { 2, 2 };

constexpr int roundedUp(int value, int to)
{
    return (value + to - 1) / to * to;
}

constexpr Size roomFor(int width)
{
    return { roundedUp(width, BlockBands::rows), BlockBands::rows };
}

/// Repeats the last of the filled columns and rows until the room is full.
void repeatEdges(YccPlanes& planes, int plane, Size filled, Size room)
{
    for (int y = 0; y < filled.height; ++y) {
        std::uint8_t* const row = planes.row(plane, y);
        std::fill(row + filled.width, row + room.width, row[filled.width - 1]);
    }
    for (int y = filled.height; y < room.height; ++y) {
        std::memcpy(planes.row(plane, y), planes.row(plane, filled.height - 1),
            static_cast<std::size_t>(room.width));
    }
}

// Halves are rounded down and up by turns, so that no picture gets brighter or darker.

VELLUMINE_VECTOR_CLONES
void averageRows(const std::uint8_t* __restrict above, const std::uint8_t* __restrict below,
    std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        to[x] = static_cast<std::uint8_t>((above[x] + below[x] + (x & 1)) / 2);
    }
}

VELLUMINE_VECTOR_CLONES
void averageColumns(const std::uint8_t* __restrict from, std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        to[x] = static_cast<std::uint8_t>((from[2 * x] + from[2 * x + 1] + (x & 1)) / 2);
    }
}

VELLUMINE_VECTOR_CLONES
void averageSquares(const std::uint8_t* __restrict above, const std::uint8_t* __restrict below,
    std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const int sum = above[2 * x] + above[2 * x + 1] + below[2 * x] + below[2 * x + 1];
        to[x] = static_cast<std::uint8_t>((sum + 1 + (x & 1)) / 4);
    }
}

/// One plane of colour, from one sample for so many pixels to one for two by two.
void average(const YccPlanes& fine, YccPlanes& band, int plane, Size room)
{
    const Subsampling shared = fine.subsampling();
    for (int y = 0; y < room.height; ++y) {
        const int above = y * coarse.y / shared.y;
        const std::uint8_t* const first = fine.row(plane, above);
        std::uint8_t* const to = band.row(plane, y);
        if (shared.x == coarse.x) {
            averageRows(first, fine.row(plane, above + 1), to, room.width);
        } else if (shared.y == coarse.y) {
            averageColumns(first, to, room.width);
        } else {
            averageSquares(first, fine.row(plane, above + 1), to, room.width);
        }
    }
}

} // namespace

BlockBands::BlockBands(std::shared_ptr<const PlaneSource> source, Rect part, YccPlanes&& band,
    std::optional<YccPlanes>&& fine)
    : m_source(std::move(source))
    , m_part(part)
    , m_band(std::move(band))
    , m_fine(std::move(fine))
{
}

Result<BlockBands> BlockBands::create(std::shared_ptr<const PlaneSource> source, Rect part)
{
    assert(contains(source->size(), part) && part.x % coarse.x == 0 && part.y % coarse.y == 0);
    const auto planes = [part](Subsampling shared) {
        return YccPlanes::create({ part.width, rows }, shared, roomFor(part.width));
    };
    auto band = planes(coarse);
    if (!band) {
        return tl::unexpected(band.error());
    }
    std::optional<YccPlanes> fine;
    if (source->subsampling() != coarse) {
        auto made = planes(source->subsampling());
        if (!made) {
            return tl::unexpected(made.error());
        }
        fine = std::move(*made);
    }
    return BlockBands(std::move(source), part, std::move(*band), std::move(fine));
}

Result<const YccPlanes*> BlockBands::at(int row)
{
    assert(row % rows == 0 && row < m_part.height);
    return readBrightness(row)
        .and_then([&] { return readColor(1, row); })
        .and_then([&] { return readColor(2, row); })
        .map([this] { return &std::as_const(m_band); });
}

Result<void> BlockBands::readBrightness(int row)
{
    const Size filled { m_part.width, std::min(rows, m_part.height - row) };
    return m_source
        ->copy(0, { m_part.x, m_part.y + row, filled.width, filled.height }, m_band.row(0, 0),
            m_band.rowBytes(0))
        .map([&] { repeatEdges(m_band, 0, filled, roomFor(m_part.width)); });
}

Result<void> BlockBands::readColor(int plane, int row)
{
    const Subsampling shared = m_source->subsampling();
    const Size filled
        = samplesOf({ m_part.width, std::min(rows, m_part.height - row) }, shared, plane);
    YccPlanes& target = m_fine ? *m_fine : m_band;
    return m_source
        ->copy(plane,
            { m_part.x / shared.x, (m_part.y + row) / shared.y, filled.width, filled.height },
            target.row(plane, 0), target.rowBytes(plane))
        .map([&] {
            const Size room = roomFor(m_part.width);
            repeatEdges(target, plane, filled, samplesOf(room, shared, plane));
            if (m_fine) {
                average(*m_fine, m_band, plane, samplesOf(room, coarse, plane));
            }
        });
}

} // namespace vellumine::imaging::ycc
