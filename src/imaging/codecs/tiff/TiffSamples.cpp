#include "imaging/codecs/tiff/TiffSamples.h"

#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>

namespace vellumine::imaging::tiff {

namespace {

/// The sample at `index` of a bit stream that starts with the highest bit of its first byte.
std::uint32_t bitsAt(const std::byte* packed, std::size_t index, int bits)
{
    const std::size_t first = index * static_cast<std::size_t>(bits);
    const std::size_t end = first + static_cast<std::size_t>(bits);
    std::uint64_t window = 0; // at most 31 + 7 bits
    for (std::size_t byte = first / 8; byte * 8 < end; ++byte) {
        window = window << 8U | std::to_integer<std::uint64_t>(packed[byte]);
    }
    const std::size_t surplus = (8 - end % 8) % 8;
    return static_cast<std::uint32_t>(window >> surplus & ((std::uint64_t { 1 } << bits) - 1));
}

template <typename Word> Word wordAt(const std::byte* packed, std::size_t index)
{
    Word word;
    std::memcpy(&word, packed + index * sizeof(Word), sizeof(Word));
    return word;
}

std::uint32_t tripleAt(const std::byte* packed, std::size_t index)
{
    const std::byte* const at = packed + index * 3;
    const auto low
        = std::to_integer<std::uint32_t>(at[std::endian::native == std::endian::big ? 2 : 0]);
    const auto middle = std::to_integer<std::uint32_t>(at[1]);
    const auto high
        = std::to_integer<std::uint32_t>(at[std::endian::native == std::endian::big ? 0 : 2]);
    return high << 16U | middle << 8U | low;
}

/// `value` of `from` bits repeated downwards until it fills `to` bits, `from <= to`.
constexpr std::uint32_t stretched(std::uint32_t value, int from, int to)
{
    std::uint32_t result = value << (to - from);
    for (int filled = from; filled < to; filled *= 2) {
        result |= result >> filled;
    }
    return result;
}
static_assert(stretched(1, 1, 8) == 255);
static_assert(stretched(0b10110, 5, 8) == 0b10110101);
static_assert(stretched(0xABC, 12, 16) == 0xABCA);

/// `value` of more than 16 bits, `maximum` being all ones, to the nearest of 16 bits.
constexpr std::uint16_t narrowed(std::uint64_t value, std::uint64_t maximum)
{
    return static_cast<std::uint16_t>((value * 65535U + maximum / 2) / maximum);
}

std::uint16_t fromUnit(double value)
{
    if (!(value > 0.0)) { // NaN too
        return 0;
    }
    return value >= 1.0 ? 65535 : static_cast<std::uint16_t>(std::lround(value * 65535.0));
}

/// An IEEE number of `mantissa` fraction bits and an exponent that fills the rest of `bits`, its
/// highest bit being the sign.
double floatFrom(std::uint32_t word, int bits, int mantissa)
{
    const int exponentBits = bits - 1 - mantissa;
    const std::uint32_t exponentMask = (1U << exponentBits) - 1U;
    const int bias = static_cast<int>(exponentMask / 2);
    const auto exponent = static_cast<int>(word >> mantissa & exponentMask);
    const auto fraction = static_cast<double>(word & ((1U << mantissa) - 1U));
    if ((word >> (bits - 1) & 1U) != 0) {
        return 0.0; // what a negative number is clamped to
    }
    if (exponent == static_cast<int>(exponentMask)) {
        return fraction == 0.0 ? 1.0 : 0.0; // infinity, NaN
    }
    if (exponent == 0) {
        return std::ldexp(fraction, 1 - bias - mantissa);
    }
    return std::ldexp(fraction + std::ldexp(1.0, mantissa), exponent - bias - mantissa);
}

void unpackFloats(ByteSpan packed, int bits, Interleaving from, std::span<std::uint16_t> samples)
{
    const std::byte* const data = packed.data();
    for (std::size_t i = 0; i < samples.size(); ++i) {
        switch (bits) {
        case 16:
            samples[i] = fromUnit(floatFrom(wordAt<std::uint16_t>(data, from.at(i)), 16, 10));
            break;
        case 24:
            samples[i] = fromUnit(floatFrom(tripleAt(data, from.at(i)), 24, 16));
            break;
        case 32:
            samples[i] = fromUnit(static_cast<double>(wordAt<float>(data, from.at(i))));
            break;
        default:
            samples[i] = fromUnit(wordAt<double>(data, from.at(i)));
            break;
        }
    }
}

/// Calls `store(i, number)` with every sample of up to 32 bits.
template <typename Store>
void forEachNumber(
    ByteSpan packed, int bits, Interleaving from, std::size_t count, const Store& store)
{
    const std::byte* const data = packed.data();
    switch (bits) {
    case 8:
        for (std::size_t i = 0; i < count; ++i) {
            store(i, std::to_integer<std::uint32_t>(data[from.at(i)]));
        }
        break;
    case 16:
        for (std::size_t i = 0; i < count; ++i) {
            store(i, std::uint32_t { wordAt<std::uint16_t>(data, from.at(i)) });
        }
        break;
    case 24:
        for (std::size_t i = 0; i < count; ++i) {
            store(i, tripleAt(data, from.at(i)));
        }
        break;
    case 32:
        for (std::size_t i = 0; i < count; ++i) {
            store(i, wordAt<std::uint32_t>(data, from.at(i)));
        }
        break;
    case 64: // far more than 16 bits can tell apart
        for (std::size_t i = 0; i < count; ++i) {
            store(i, static_cast<std::uint32_t>(wordAt<std::uint64_t>(data, from.at(i)) >> 32U));
        }
        break;
    default:
        for (std::size_t i = 0; i < count; ++i) {
            store(i, bitsAt(data, from.at(i), bits));
        }
        break;
    }
}

[[maybe_unused]] bool holds(ByteSpan packed, SampleType type, Interleaving from, std::size_t count)
{
    return count == 0
        || packed.size() * 8 >= (from.at(count - 1) + 1) * static_cast<std::size_t>(type.bits);
}

} // namespace

bool SampleType::isSupported() const
{
    if (kind == Kind::floatingPoint) {
        return bits == 16 || bits == 24 || bits == 32 || bits == 64;
    }
    return (bits >= 1 && bits <= 32) || bits == 64;
}

int SampleType::decodedBits() const
{
    return kind != Kind::floatingPoint && bits <= 8 ? 8 : 16;
}

void unpackSamples(
    ByteSpan packed, SampleType type, Interleaving from, std::span<std::uint16_t> samples)
{
    assert(type.isSupported());
    assert(holds(packed, type, from, samples.size()));
    if (type.kind == SampleType::Kind::floatingPoint) {
        unpackFloats(packed, type.bits, from, samples);
        return;
    }
    const int bits = type.bits == 64 ? 32 : type.bits;
    // A signed number counted from its minimum has its sign bit turned over.
    const std::uint32_t flip = type.kind == SampleType::Kind::signedInteger ? 1U << (bits - 1) : 0U;
    if (bits <= 16) {
        const int decoded = type.decodedBits();
        forEachNumber(
            packed, type.bits, from, samples.size(), [&](std::size_t i, std::uint32_t number) {
                samples[i] = static_cast<std::uint16_t>(stretched(number ^ flip, bits, decoded));
            });
    } else {
        const std::uint64_t maximum = (std::uint64_t { 1 } << bits) - 1;
        forEachNumber(
            packed, type.bits, from, samples.size(), [&](std::size_t i, std::uint32_t number) {
                samples[i] = narrowed(number ^ flip, maximum);
            });
    }
}

void unpackIndices(
    ByteSpan packed, SampleType type, Interleaving from, std::span<std::uint16_t> indices)
{
    assert(type.bits <= 16 && type.kind != SampleType::Kind::floatingPoint);
    assert(holds(packed, type, from, indices.size()));
    forEachNumber(
        packed, type.bits, from, indices.size(), [&](std::size_t i, std::uint32_t number) {
            indices[i] = static_cast<std::uint16_t>(number);
        });
}

} // namespace vellumine::imaging::tiff
