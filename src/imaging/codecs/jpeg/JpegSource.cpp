#include "imaging/codecs/jpeg/JpegSource.h"

#include "imaging/codecs/jpeg/JpegErrors.h"

#include <algorithm>
#include <array>

namespace vellumine::imaging::jpeg {

Source::Source(ByteSpan file)
    : jpeg_source_mgr {}
    , m_file(file)
{
    next_input_byte = reinterpret_cast<const JOCTET*>(file.data());
    bytes_in_buffer = file.size();
    init_source = [](j_decompress_ptr /*library*/) {};
    fill_input_buffer = provideMore;
    skip_input_data = skip;
    resync_to_restart = jpeg_resync_to_restart;
    term_source = [](j_decompress_ptr /*library*/) {};
}

boolean Source::provideMore(j_decompress_ptr library)
{
    static constexpr std::array<JOCTET, 2> endMarker { 0xFF, JPEG_EOI };
    auto& source = *static_cast<Source*>(library->src);
    Errors& errors = *static_cast<Errors*>(library->err);
    source.m_ranOut = true;
    if (source.m_atEnd == AtEnd::fail) {
        errors.fail(Error::Kind::truncated, "the file ends early");
    }
    errors.setOverridingKind(Error::Kind::truncated);
    source.next_input_byte = endMarker.data();
    source.bytes_in_buffer = endMarker.size();
    return TRUE;
}

void Source::skip(j_decompress_ptr library, long count)
{
    jpeg_source_mgr& source = *library->src;
    const std::size_t skipped
        = std::min(source.bytes_in_buffer, static_cast<std::size_t>(std::max(count, 0L)));
    source.next_input_byte += skipped;
    source.bytes_in_buffer -= skipped;
}

} // namespace vellumine::imaging::jpeg
