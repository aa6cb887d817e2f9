#pragma once

#include "imaging/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace vellumine::imaging::png {

/// The content of a zlib stream; none when it is damaged or longer than `maximum`.
[[nodiscard]] std::optional<ByteBuffer> inflated(ByteSpan stream, std::size_t maximum);

/// How hard compressing tries, from libdeflate's levels 1 to 12.
enum class CompressionLevel : std::uint8_t {
    Fast = 1,
    Balanced = 6,
    Thorough = 7,
    Deep = 9,
    Optimal = 12,
};

/// A zlib stream of the bytes. Throws std::bad_alloc.
[[nodiscard]] ByteBuffer deflated(ByteSpan bytes, CompressionLevel level);

} // namespace vellumine::imaging::png
