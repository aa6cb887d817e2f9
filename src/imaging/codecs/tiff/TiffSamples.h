#pragma once

#include "imaging/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vellumine::imaging::tiff {

/// How one stored sample is coded.
struct SampleType {
    enum class Kind : std::uint8_t { unsignedInteger, signedInteger, floatingPoint };
    Kind kind = Kind::unsignedInteger;
    int bits = 8;

    /// 1 to 32 and 64 bits for integers; 16, 24, 32 and 64 for floating point.
    [[nodiscard]] bool isSupported() const;
    /// Depth of the samples that come out: 8 for integers of up to 8 bits, else 16.
    [[nodiscard]] int decodedBits() const;
};

/// Which samples of a stored row: the first one, and every so many-th from there.
struct Interleaving {
    std::size_t first = 0;
    std::size_t step = 1;

    [[nodiscard]] std::size_t at(std::size_t i) const { return first + i * step; }
};

/// Turns stored samples of a row into samples of `type.decodedBits()` bits, in 16-bit words.
/// Integers are stretched to the full range by repeating their bits (signed ones counted from
/// their minimum); wider ones are rounded to 16 bits. Floating point is clamped to 0 to 1, NaN to
/// 0. Samples of 8, 16, 24, 32 and 64 bits are expected in the machine's byte order, as the
/// library leaves them; others as one bit stream, first bit highest.
///
/// `packed` must hold all that become `samples`.
void unpackSamples(
    ByteSpan packed, SampleType type, Interleaving from, std::span<std::uint16_t> samples);

/// The same without stretching: numbers as they are. For integers of up to 16 bits.
void unpackIndices(
    ByteSpan packed, SampleType type, Interleaving from, std::span<std::uint16_t> indices);

} // namespace vellumine::imaging::tiff
