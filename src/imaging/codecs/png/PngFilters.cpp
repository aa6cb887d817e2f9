#include "imaging/codecs/png/PngFilters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace vellumine::imaging::png {

namespace {

constexpr std::size_t filterCount = 5;

unsigned number(std::byte byte)
{
    return std::to_integer<unsigned>(byte);
}

/// The neighbour that is nearest to left + above - corner.
unsigned paeth(unsigned left, unsigned above, unsigned corner)
{
    const int toLeft = static_cast<int>(above) - static_cast<int>(corner);
    const int toAbove = static_cast<int>(left) - static_cast<int>(corner);
    const int distanceLeft = std::abs(toLeft);
    const int distanceAbove = std::abs(toAbove);
    const int distanceCorner = std::abs(toLeft + toAbove);
    const unsigned aboveOrCorner = distanceAbove <= distanceCorner ? above : corner;
    return distanceLeft <= distanceAbove && distanceLeft <= distanceCorner ? left : aboveOrCorner;
}

/// `predict` gets the bytes to the left, above, and above to the left.
template <typename Predict>
void subtract(
    ByteSpan row, ByteSpan above, std::size_t distance, std::byte* out, const Predict& predict)
{
    const std::size_t first = std::min(distance, row.size());
    for (std::size_t i = 0; i < first; ++i) {
        out[i] = static_cast<std::byte>(number(row[i]) - predict(0U, number(above[i]), 0U));
    }
    for (std::size_t i = first; i < row.size(); ++i) {
        out[i] = static_cast<std::byte>(number(row[i])
            - predict(number(row[i - distance]), number(above[i]), number(above[i - distance])));
    }
}

/// The filters by their numbers in the file.
void filterRow(
    std::size_t filter, ByteSpan row, ByteSpan above, std::size_t distance, std::byte* out)
{
    switch (filter) {
    case 0:
        std::ranges::copy(row, out);
        break;
    case 1:
        subtract(row, above, distance, out, [](unsigned left, unsigned, unsigned) { return left; });
        break;
    case 2:
        subtract(row, above, distance, out, [](unsigned, unsigned up, unsigned) { return up; });
        break;
    case 3:
        subtract(row, above, distance, out,
            [](unsigned left, unsigned up, unsigned) { return (left + up) / 2; });
        break;
    default:
        subtract(row, above, distance, out, paeth);
        break;
    }
}

double smallestSum(ByteSpan bytes)
{
    unsigned sum = 0;
    for (const std::byte byte : bytes) {
        sum += static_cast<unsigned>(std::abs(static_cast<std::int8_t>(byte)));
    }
    return sum;
}

/// Up to a constant for rows of one length.
double leastEntropy(ByteSpan bytes)
{
    std::array<std::uint32_t, 256> counts {};
    for (const std::byte byte : bytes) {
        ++counts[number(byte)];
    }
    double sum = 0;
    for (const std::uint32_t count : counts) {
        if (count > 1) {
            sum -= count * std::log2(static_cast<double>(count));
        }
    }
    return sum;
}

double fewestPairs(ByteSpan bytes)
{
    std::array<std::uint64_t, 1024> seen {};
    unsigned count = 0;
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        const unsigned pair = (number(bytes[i - 1]) << 8U) | number(bytes[i]);
        const std::uint64_t bit = std::uint64_t { 1 } << (pair % 64);
        std::uint64_t& word = seen[pair / 64];
        count += (word & bit) == 0 ? 1U : 0U;
        word |= bit;
    }
    return count;
}

double cost(FilterStrategy strategy, ByteSpan bytes)
{
    switch (strategy) {
    case FilterStrategy::leastEntropy:
        return leastEntropy(bytes);
    case FilterStrategy::fewestPairs:
        return fewestPairs(bytes);
    default:
        return smallestSum(bytes);
    }
}

} // namespace

void appendFiltered(
    ByteBuffer& bytes, const PackedPicture& picture, RowRange rows, FilterStrategy strategy)
{
    const ByteBuffer nothing(picture.rowBytes);
    const std::size_t distance = picture.filterDistance();
    const auto aboveOf = [&](int y) { return y == 0 ? ByteSpan(nothing) : picture.row(y - 1); };
    std::size_t at = bytes.size();
    bytes.resize(at + (picture.rowBytes + 1) * static_cast<std::size_t>(rows.end - rows.first));

    if (strategy <= FilterStrategy::paeth) {
        const auto filter = static_cast<std::size_t>(strategy);
        for (int y = rows.first; y < rows.end; ++y) {
            bytes[at++] = static_cast<std::byte>(filter);
            filterRow(filter, picture.row(y), aboveOf(y), distance, bytes.data() + at);
            at += picture.rowBytes;
        }
        return;
    }

    std::array<ByteBuffer, filterCount> tried;
    tried.fill(ByteBuffer(picture.rowBytes));
    for (int y = rows.first; y < rows.end; ++y) {
        std::size_t best = 0;
        double bestCost = 0;
        for (std::size_t filter = 0; filter < filterCount; ++filter) {
            filterRow(filter, picture.row(y), aboveOf(y), distance, tried.at(filter).data());
            const double filterCost = cost(strategy, tried.at(filter));
            if (filter == 0 || filterCost < bestCost) {
                best = filter;
                bestCost = filterCost;
            }
        }
        bytes[at++] = static_cast<std::byte>(best);
        std::ranges::copy(tried.at(best), bytes.begin() + static_cast<std::ptrdiff_t>(at));
        at += picture.rowBytes;
    }
}

} // namespace vellumine::imaging::png
