#pragma once

#include "imaging/Bytes.h"

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace vellumine::imaging::jpeg {

/// What happens when the library asks for bytes behind the end of the file.
enum class AtEnd {
    fail, ///< the file is truncated
    pretendEndMarker, ///< the library gets an end marker; whether anything is missing shows later
};

/// Feeds a file in memory to the library, and knows whether the file really came to its end.
/// The object's error manager must be an Errors.
class Source : public jpeg_source_mgr {
public:
    explicit Source(ByteSpan file);

    void setAtEnd(AtEnd atEnd) { m_atEnd = atEnd; }
    /// Whether the library asked for more than the file has.
    [[nodiscard]] bool ranOut() const { return m_ranOut; }
    [[nodiscard]] ByteSpan file() const { return m_file; }
    /// How many bytes of the file the library has taken, as far as it has told.
    [[nodiscard]] std::size_t position() const
    {
        return m_ranOut ? m_file.size() : m_file.size() - bytes_in_buffer;
    }

private:
    static boolean provideMore(j_decompress_ptr library);
    static void skip(j_decompress_ptr library, long count);

    ByteSpan m_file;
    AtEnd m_atEnd = AtEnd::fail;
    bool m_ranOut = false;
};

} // namespace vellumine::imaging::jpeg
