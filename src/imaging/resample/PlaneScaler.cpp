#include "imaging/resample/PlaneScaler.h"

#include "imaging/VectorClones.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vellumine::imaging {

namespace {

constexpr int laneCount = PlaneScaler::bandRows;
/// Vectors are turned in halves.
constexpr int halfCount = laneCount / 2;
/// Columns of the result that are made of the same spread columns: those stay in the cache.
constexpr int blockColumns = 64;
/// Columns whose sums are worked on at the same time.
constexpr std::size_t columnsTogether = 4;
/// What rows of the result are written in.
constexpr int columnsAtOnce = 2 * laneCount;

using Bytes [[gnu::vector_size(laneCount)]] = std::uint8_t;
using Numbers [[gnu::vector_size(halfCount * sizeof(float))]] = float;

/// A vector as processors have it, and the same in memory that is not aligned for it. (A copy of
/// the bytes would go through smaller vectors, and wait for them.)
template <int Count> struct NumberVector {
    static constexpr int count = Count;
    float vector [[gnu::vector_size(Count * sizeof(float))]];
    using InMemory
        [[gnu::vector_size(Count * sizeof(float)), gnu::aligned(alignof(float)), gnu::may_alias]]
        = float;
};

/// Calls the function with 0 to Count - 1, written out: what a loop would index stays in registers.
template <std::size_t Count, typename Function>
[[gnu::always_inline]] inline void forEachIndex(const Function& function)
{
    [&function]<std::size_t... index>(std::index_sequence<index...>)
    {
        (function(std::integral_constant<std::size_t, index> {}), ...);
    }
    (std::make_index_sequence<Count> {});
}

/// So many sums of products.
template <typename Vector, std::size_t Count> class Sums {
public:
    [[gnu::always_inline]] void add(float weight, const float* numbers)
    {
        forEachIndex<Count / Vector::count>([&](auto i) {
            std::get<i>(m_sums).vector += weight
                * *reinterpret_cast<const typename Vector::InMemory*>(numbers + i * Vector::count);
        });
    }
    template <typename Array> [[gnu::always_inline]] void get(Array& numbers) const
    {
        static_assert(sizeof(numbers) == sizeof(m_sums));
        std::memcpy(&numbers, &m_sums, sizeof(numbers));
    }

private:
    std::array<Vector, Count / Vector::count> m_sums {};
};

constexpr std::size_t roundedUp(int value, int to)
{
    const int multiples = (value + to - 1) / to;
    return static_cast<std::size_t>(multiples) * static_cast<std::size_t>(to);
}

/// Rows become columns: both halves of the rows are threaded into each other until every number has
/// moved to its place, a step for each power of two.
[[gnu::always_inline]] inline void transpose(std::array<Numbers, halfCount>& m)
{
    std::array<Numbers, halfCount> next;
    for (int step = 0; step < 3; ++step) {
        for (std::size_t i = 0; i < halfCount / 2; ++i) {
            const Numbers& upper = m[i];
            const Numbers& lower = m[i + halfCount / 2];
            next[2 * i] = __builtin_shufflevector(upper, lower, 0, 8, 1, 9, 2, 10, 3, 11);
            next[2 * i + 1] = __builtin_shufflevector(upper, lower, 4, 12, 5, 13, 6, 14, 7, 15);
        }
        m = next;
    }
}

[[gnu::always_inline]] inline void transpose(std::array<Bytes, laneCount>& m)
{
    std::array<Bytes, laneCount> next;
    for (int step = 0; step < 4; ++step) {
        for (std::size_t i = 0; i < laneCount / 2; ++i) {
            const Bytes& upper = m[i];
            const Bytes& lower = m[i + laneCount / 2];
            next[2 * i] = __builtin_shufflevector(
                upper, lower, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
            next[2 * i + 1] = __builtin_shufflevector(
                upper, lower, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
        }
        m = next;
    }
}

/// Some columns of a band as real numbers, the rows of a column side by side.
[[gnu::always_inline]] inline void spread(
    const PlaneScaler::Band& band, int from, int to, float* lanes)
{
    std::array<Bytes, laneCount> block;
    std::array<std::uint8_t, sizeof(block)> bytes;
    for (int x = from; x < to; x += laneCount) {
        for (std::size_t row = 0; row < block.size(); ++row) {
            std::memcpy(&block[row], band[row] + x, sizeof(Bytes));
        }
        transpose(block);
        std::memcpy(bytes.data(), &block, sizeof(block));
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            lanes[i] = bytes[i];
        }
        lanes += bytes.size();
    }
}

/// A few columns of the result side by side: one sum waits for its last addition, several do not.
template <typename Vector>
[[gnu::always_inline]] inline void addUpColumns(const LanczosTaps& taps,
    const std::array<const float*, columnsTogether>& samples,
    const std::array<const float*, columnsTogether>& weights,
    std::array<Sums<Vector, laneCount>, columnsTogether>& sums)
{
    for (int tap = 0; tap < taps.count(); ++tap) {
        forEachIndex<columnsTogether>([&](auto i) {
            std::get<i>(sums).add(std::get<i>(weights)[tap],
                std::get<i>(samples) + static_cast<std::ptrdiff_t>(tap) * laneCount);
        });
    }
}

/// Columns of the result, all rows of the band at once. Fills the rows up to where they are read.
template <typename Vector>
[[gnu::always_inline]] inline void narrow(const LanczosTaps& taps, const float* lanes, int begin,
    int end, const std::array<float*, laneCount>& rows)
{
    const int firstColumn = taps.first(begin);
    const int filledEnd = static_cast<int>(roundedUp(end, columnsAtOnce));
    for (int x = begin; x < filledEnd; x += halfCount) {
        std::array<Numbers, halfCount> upper;
        std::array<Numbers, halfCount> lower;
        for (std::size_t i = 0; i < halfCount; i += columnsTogether) {
            std::array<const float*, columnsTogether> samples;
            std::array<const float*, columnsTogether> weights;
            for (std::size_t j = 0; j < columnsTogether; ++j) {
                const int column = std::min(x + static_cast<int>(i + j), end - 1);
                samples[j] = lanes
                    + static_cast<std::ptrdiff_t>(taps.first(column) - firstColumn) * laneCount;
                weights[j] = taps.weights(column);
            }
            std::array<Sums<Vector, laneCount>, columnsTogether> sums;
            addUpColumns<Vector>(taps, samples, weights, sums);
            for (std::size_t j = 0; j < columnsTogether; ++j) {
                std::array<Numbers, 2> halves;
                sums[j].get(halves);
                upper[i + j] = halves[0];
                lower[i + j] = halves[1];
            }
        }
        transpose(upper);
        transpose(lower);
        for (std::size_t row = 0; row < halfCount; ++row) {
            *reinterpret_cast<NumberVector<halfCount>::InMemory*>(rows[row] + x) = upper[row];
            *reinterpret_cast<NumberVector<halfCount>::InMemory*>(rows[row + halfCount] + x)
                = lower[row];
        }
    }
}

/// The sum of rows, each with its weight.
template <typename Vector>
[[gnu::always_inline]] inline void addUp(
    std::span<const float* const> rows, const float* weights, int width, std::uint16_t* to)
{
    constexpr float largest = 65535;
    for (int x = 0; x < width; x += columnsAtOnce) {
        Sums<Vector, columnsAtOnce> sums;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            sums.add(weights[i], rows[i] + x);
        }
        std::array<float, columnsAtOnce> numbers;
        sums.get(numbers);
        for (const float number : numbers) {
            *to++ = static_cast<std::uint16_t>(
                static_cast<int>(std::clamp(number + 0.5F, 0.0F, largest)));
        }
    }
}

/// All columns of the result, block by block. `lanes` has room for what a block is made of.
template <typename Vector>
[[gnu::always_inline]] inline void narrowBand(const PlaneScaler::Band& band,
    const LanczosTaps& taps, int width, float* lanes, const std::array<float*, laneCount>& rows)
{
    for (int begin = 0; begin < width; begin += blockColumns) {
        const int end = std::min(begin + blockColumns, width);
        spread(band, taps.first(begin), taps.end(end - 1), lanes);
        narrow<Vector>(taps, lanes, begin, end, rows);
    }
}

// The same with vectors of 4, 8 and 16 numbers: the program's start chooses.

#ifdef VELLUMINE_HAS_VECTOR_CLONES
[[gnu::target("arch=x86-64-v4")]] void narrowRows(const PlaneScaler::Band& band,
    const LanczosTaps& taps, int width, float* lanes, const std::array<float*, laneCount>& rows)
{
    narrowBand<NumberVector<16>>(band, taps, width, lanes, rows);
}

[[gnu::target("arch=x86-64-v3")]] void narrowRows(const PlaneScaler::Band& band,
    const LanczosTaps& taps, int width, float* lanes, const std::array<float*, laneCount>& rows)
{
    narrowBand<NumberVector<8>>(band, taps, width, lanes, rows);
}

[[gnu::target("arch=x86-64-v4")]] void addRows(
    std::span<const float* const> rows, const float* weights, int width, std::uint16_t* to)
{
    addUp<NumberVector<16>>(rows, weights, width, to);
}

[[gnu::target("arch=x86-64-v3")]] void addRows(
    std::span<const float* const> rows, const float* weights, int width, std::uint16_t* to)
{
    addUp<NumberVector<8>>(rows, weights, width, to);
}

[[gnu::target("default")]]
#endif
void narrowRows(const PlaneScaler::Band& band, const LanczosTaps& taps, int width, float* lanes,
    const std::array<float*, laneCount>& rows)
{
    narrowBand<NumberVector<4>>(band, taps, width, lanes, rows);
}

#ifdef VELLUMINE_HAS_VECTOR_CLONES
[[gnu::target("default")]]
#endif
void addRows(
    std::span<const float* const> rows, const float* weights, int width, std::uint16_t* to)
{
    addUp<NumberVector<4>>(rows, weights, width, to);
}

} // namespace

PlaneScaler::PlaneScaler(int planes, Size plane, Extent extent, Size target)
    : m_horizontal(plane.width, extent.width, target.width)
    , m_vertical(plane.height, extent.height, target.height)
    , m_planes(planes)
    , m_width(target.width)
    , m_rowFloats(roundedUp(target.width, columnsAtOnce))
    , m_tapRows(static_cast<std::size_t>(m_vertical.count()))
    , m_tapWeights(m_tapRows.size())
{
    int widest = 0;
    for (int begin = 0; begin < m_width; begin += blockColumns) {
        const int last = std::min(begin + blockColumns, m_width) - 1;
        widest = std::max(widest, m_horizontal.end(last) - m_horizontal.first(begin));
    }
    m_lanes.resize(roundedUp(widest, laneCount) * laneCount);
}

Result<void> PlaneScaler::hold(int rows)
{
    m_heldRows = static_cast<int>(roundedUp(rows, bandRows));
    m_held = allocatePixels(
        static_cast<std::size_t>(m_planes * m_heldRows) * m_rowFloats * sizeof(float));
    if (!m_held) {
        return failure(Error::Kind::outOfMemory, "no memory to resample in");
    }
    return {};
}

float* PlaneScaler::heldRow(int plane, int row) const
{
    return reinterpret_cast<float*>(m_held.get())
        + static_cast<std::size_t>(plane * m_heldRows + row % m_heldRows) * m_rowFloats;
}

void PlaneScaler::take(const Band& band)
{
    std::array<float*, bandRows> rows {};
    const int rowsOfEach = bandRows / m_planes;
    for (int i = 0; i < bandRows; ++i) {
        rows.at(static_cast<std::size_t>(i)) = heldRow(i / rowsOfEach, m_taken + i % rowsOfEach);
    }
    narrowRows(band, m_horizontal, m_width, m_lanes.data(), rows);
    m_taken += rowsOfEach;
}

void PlaneScaler::make(int plane, int row, std::uint16_t* to)
{
    constexpr float scale = 256;
    for (std::size_t i = 0; i < m_tapRows.size(); ++i) {
        m_tapRows[i] = heldRow(plane, m_vertical.first(row) + static_cast<int>(i));
        m_tapWeights[i] = scale * m_vertical.weights(row)[i];
    }
    addRows(m_tapRows, m_tapWeights.data(), m_width, to);
}

} // namespace vellumine::imaging
