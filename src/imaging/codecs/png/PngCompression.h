#pragma once

#include "imaging/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

struct libdeflate_compressor;

namespace vellumine::imaging::png {

/// The content of a zlib stream; none when it is damaged or longer than `maximum`.
[[nodiscard]] std::optional<ByteBuffer> inflated(ByteSpan stream, std::size_t maximum);

/// How hard compressing tries, from libdeflate's levels 1 to 12.
enum class CompressionLevel : std::uint8_t {
    lowest = 1,
    balanced = 6,
    thorough = 7,
    deep = 9,
    search = 10,
    optimal = 12,
};

/// Makes zlib streams, one after the other in the same memory: that of the highest levels is 9 MB,
/// and dear where it is new.
class Deflater {
public:
    /// Throws std::bad_alloc.
    explicit Deflater(CompressionLevel level);

    /// A zlib stream of the bytes. Throws std::bad_alloc.
    [[nodiscard]] ByteBuffer deflated(ByteSpan bytes);

private:
    std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> m_library;
};

/// A single zlib stream of the bytes. Throws std::bad_alloc.
[[nodiscard]] ByteBuffer deflated(ByteSpan bytes, CompressionLevel level);

/// The same by zlib, as small as it can. Now and then that is ahead, and always with a few bytes.
/// Throws std::bad_alloc.
[[nodiscard]] ByteBuffer deflatedByZlib(ByteSpan bytes);

/// The same in half of the time that libdeflate's lowest level takes, and a tenth longer than its.
/// Throws std::bad_alloc.
[[nodiscard]] ByteBuffer quicklyDeflated(ByteSpan bytes);

} // namespace vellumine::imaging::png
