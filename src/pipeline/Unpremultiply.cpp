#include "pipeline/Unpremultiply.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace vellumine {

namespace {

/// floor(2^32 / alpha) + 1. The upper half of its product with n is floor(n / alpha) for every n
/// below 2^16: the excess of at most alpha / 2^32 per unit adds up to less than 1 / alpha.
constexpr std::array<std::uint64_t, 256> reciprocals = [] {
    std::array<std::uint64_t, 256> table {};
    for (std::size_t alpha = 1; alpha < table.size(); ++alpha) {
        table.at(alpha) = (std::uint64_t { 1 } << 32U) / alpha + 1;
    }
    return table;
}();

constexpr std::uint8_t straight(std::uint8_t sample, std::uint8_t alpha)
{
    const std::uint64_t value = sample * std::uint64_t { 255 } + alpha / 2U;
    return static_cast<std::uint8_t>(
        std::min<std::uint64_t>(255, value * reciprocals[alpha] >> 32U));
}

} // namespace

bool isOpaque(std::span<const std::uint8_t> pixels)
{
    std::uint8_t all = 255;
    for (std::size_t i = 3; i < pixels.size(); i += 4) {
        all &= pixels[i];
    }
    return all == 255;
}

void unpremultiply(std::span<const std::uint8_t> from, std::span<std::uint8_t> to)
{
    std::memcpy(to.data(), from.data(), from.size());
    if (isOpaque(from)) {
        return;
    }
    for (std::size_t i = 0; i + 3 < to.size(); i += 4) {
        const std::uint8_t alpha = to[i + 3];
        if (alpha == 0 || alpha == 255) {
            continue;
        }
        to[i] = straight(to[i], alpha);
        to[i + 1] = straight(to[i + 1], alpha);
        to[i + 2] = straight(to[i + 2], alpha);
    }
}

} // namespace vellumine
