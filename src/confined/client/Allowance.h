#pragma once

#include "imaging/codecs/Codec.h"

#include <chrono>
#include <cstdint>

namespace vellumine::confined {

/// What a helper may take for one answer.
struct Allowance {
    std::chrono::milliseconds time;
    std::chrono::seconds processorTime;
    std::uint64_t memoryBytes; ///< of addresses, its programs and threads included
};

/// How much that is: far more than a sound picture ever needs, on any machine that is of use.
struct Patience {
    std::chrono::milliseconds timeAtLeast = std::chrono::minutes(1);
    std::chrono::milliseconds timePerMegabyte
        = std::chrono::seconds(1); ///< of the file, to read it
    std::chrono::milliseconds timePerMegapixel = std::chrono::seconds(6);
    std::chrono::milliseconds processorTimeAtLeast = std::chrono::seconds(30);
    std::chrono::milliseconds processorTimePerMegapixel = std::chrono::seconds(3);
    std::uint64_t memoryAtLeast = std::uint64_t { 1 } << 30U;
    std::uint64_t memoryPerDecodedByte = 8; ///< some codecs keep planes and coefficients meanwhile

    [[nodiscard]] Allowance toOpen(std::uint64_t fileBytes) const;
    [[nodiscard]] Allowance toDecode(
        std::uint64_t fileBytes, const imaging::ImageHeader& header) const;
};

} // namespace vellumine::confined
