#include "imaging/codecs/png/PngCompression.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

#include <isa-l.h>
#include <libdeflate.h>
#include <zlib.h>

namespace vellumine::imaging::png {

namespace {

/// ISA-L counts in 32 bits.
constexpr std::size_t largestForQuick = std::size_t { 1 } << 30U;

using Decompressor
    = std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>;

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

Deflater::Deflater(CompressionLevel level)
    : m_library(libdeflate_alloc_compressor(static_cast<int>(level)), libdeflate_free_compressor)
{
    if (!m_library) {
        throw std::bad_alloc();
    }
}

ByteBuffer Deflater::deflated(ByteSpan bytes)
{
    ByteBuffer stream(libdeflate_zlib_compress_bound(m_library.get(), bytes.size()));
    stream.resize(libdeflate_zlib_compress(
        m_library.get(), bytes.data(), bytes.size(), stream.data(), stream.size()));
    return stream;
}

ByteBuffer deflated(ByteSpan bytes, CompressionLevel level)
{
    return Deflater(level).deflated(bytes);
}

ByteBuffer deflatedByZlib(ByteSpan bytes)
{
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    ByteBuffer stream(size);
    if (compress2(reinterpret_cast<Bytef*>(stream.data()), &size,
            reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()),
            Z_BEST_COMPRESSION)
        != Z_OK) {
        throw std::bad_alloc(); // there is room enough, and nothing else that could go wrong
    }
    stream.resize(size);
    return stream;
}

ByteBuffer quicklyDeflated(ByteSpan bytes)
{
    // Blocks of 64 KiB are stored as they are where they do not get shorter.
    constexpr std::size_t block = std::size_t { 1 } << 16U;
    constexpr std::size_t blockHeader = 5;
    constexpr std::size_t envelope = 64;
    ByteBuffer stream(bytes.size() + (bytes.size() / block + 1) * blockHeader + envelope);
    const auto scratch = std::make_unique_for_overwrite<std::uint8_t[]>(ISAL_DEF_LVL1_DEFAULT);
    isal_zstream library;
    isal_deflate_stateless_init(&library);
    library.level = 1;
    library.level_buf = scratch.get();
    library.level_buf_size = ISAL_DEF_LVL1_DEFAULT;
    library.gzip_flag = IGZIP_ZLIB;
    library.end_of_stream = 1;
    // The library only reads it, but does not say so.
    library.next_in
        = const_cast<std::uint8_t*>(reinterpret_cast<const std::uint8_t*>(bytes.data()));
    library.avail_in = static_cast<std::uint32_t>(bytes.size());
    library.next_out = reinterpret_cast<std::uint8_t*>(stream.data());
    library.avail_out = static_cast<std::uint32_t>(stream.size());
    if (bytes.size() > largestForQuick || isal_deflate_stateless(&library) != COMP_OK) {
        return deflated(bytes, CompressionLevel::lowest);
    }
    stream.resize(library.total_out);
    return stream;
}

} // namespace vellumine::imaging::png
