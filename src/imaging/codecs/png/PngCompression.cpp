#include "imaging/codecs/png/PngCompression.h"

#include <algorithm>
#include <memory>
#include <new>

#include <libdeflate.h>

namespace vellumine::imaging::png {

namespace {

using Decompressor
    = std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>;
using Compressor = std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)>;

} // namespace

std::optional<ByteBuffer> inflated(ByteSpan stream, std::size_t maximum)
{
    const Decompressor decompressor(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    if (!decompressor) {
        return std::nullopt;
    }
    // A stream does not say how long its content is.
    std::size_t room = std::min(maximum, std::max<std::size_t>(4096, 8 * stream.size()));
    while (true) {
        ByteBuffer content(room);
        std::size_t size = 0;
        switch (libdeflate_zlib_decompress(decompressor.get(), stream.data(), stream.size(),
            content.data(), content.size(), &size)) {
        case LIBDEFLATE_SUCCESS:
            content.resize(size);
            return content;
        case LIBDEFLATE_INSUFFICIENT_SPACE:
            break;
        default:
            return std::nullopt;
        }
        if (room == maximum) {
            return std::nullopt;
        }
        room = std::min(maximum, 4 * room);
    }
}

ByteBuffer deflated(ByteSpan bytes, CompressionLevel level)
{
    const Compressor compressor(
        libdeflate_alloc_compressor(static_cast<int>(level)), libdeflate_free_compressor);
    if (!compressor) {
        throw std::bad_alloc();
    }
    ByteBuffer stream(libdeflate_zlib_compress_bound(compressor.get(), bytes.size()));
    stream.resize(libdeflate_zlib_compress(
        compressor.get(), bytes.data(), bytes.size(), stream.data(), stream.size()));
    return stream;
}

} // namespace vellumine::imaging::png
