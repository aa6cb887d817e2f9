#include "pipeline/Unpremultiply.h"

#include "imaging/PixelConversion.h"
#include "imaging/VectorClones.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vellumine {

namespace {

/// (sample * 255 + alpha / 2) / alpha in whole numbers, at most 255. The half that is added keeps
/// the quotient further from the next whole number than a float's rounding can take it, for every
/// sample and alpha.
int straight(int sample, int alpha, float reciprocal)
{
    const int numerator = sample * 255 + alpha / 2;
    return std::min(static_cast<int>((static_cast<float>(numerator) + 0.5F) * reciprocal), 255);
}

/// The alpha, or 255 for 0: colour that is not to be seen stays as it is. A branch would keep the
/// compiler from making vectors of it.
int divisor(int alpha)
{
    const std::uint32_t isZero = static_cast<std::uint32_t>(alpha - 1) >> 31U;
    return alpha + 255 * static_cast<int>(isZero);
}

VELLUMINE_VECTOR_CLONES
void divide(const std::uint8_t* __restrict from, std::uint8_t* __restrict to, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        const int alpha = from[4 * x + 3];
        const float reciprocal = 1.0F / static_cast<float>(divisor(alpha));
        to[4 * x] = static_cast<std::uint8_t>(straight(from[4 * x], alpha, reciprocal));
        to[4 * x + 1] = static_cast<std::uint8_t>(straight(from[4 * x + 1], alpha, reciprocal));
        to[4 * x + 2] = static_cast<std::uint8_t>(straight(from[4 * x + 2], alpha, reciprocal));
        to[4 * x + 3] = static_cast<std::uint8_t>(alpha);
    }
}

} // namespace

void unpremultiply(std::span<const std::uint8_t> from, std::span<std::uint8_t> to)
{
    if (imaging::isOpaque(from)) {
        std::memcpy(to.data(), from.data(), from.size());
    } else {
        divide(from.data(), to.data(), from.size() / 4);
    }
}

} // namespace vellumine
