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
    fast = 1,
    balanced = 6,
    thorough = 7,
    deep = 9,
    optimal = 12,
};

/// A zlib stream of the bytes. Throws std::bad_alloc.
[[nodiscard]] ByteBuffer deflated(ByteSpan bytes, CompressionLevel level);

} // namespace vellumine::imaging::png
