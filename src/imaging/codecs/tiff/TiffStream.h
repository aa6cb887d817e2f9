#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"

#include <cstdint>
#include <memory>
#include <string>
#include <tiffio.h>

namespace vellumine::imaging::tiff {

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// What the library said about one open file. Nothing is printed, and nothing is shared between
/// files.
struct TiffMessages {
    std::string lastError;
    /// Pixel data ended early. Some decompressors say so in a warning only, and then report
    /// success.
    bool dataMissing = false;

    /// The failure that the messages amount to.
    [[nodiscard]] Error failureOf(const std::string& fallback) const;
};

/// A TIFF file in memory that is being read. Opening reads the header and the first directory, and
/// no other directory is ever touched.
class TiffReader {
public:
    /// `file` must outlive the reader. No single allocation of the library exceeds
    /// `maximumAllocation` bytes. Fails with Malformed or Truncated.
    static Result<TiffReader> open(ByteSpan file, std::uint64_t maximumAllocation);

    [[nodiscard]] TIFF* get() const { return m_tiff.get(); }
    [[nodiscard]] const TiffMessages& messages() const { return m_state->messages; }

private:
    struct State {
        ByteSpan file;
        std::uint64_t position = 0;
        TiffMessages messages;
    };
    friend struct TiffReaderCalls;

    std::unique_ptr<State> m_state; // the library holds its address, so it stays where it is
    TiffHandle m_tiff;
};

/// A TIFF file that is being written to memory.
class TiffWriter {
public:
    /// Classic TIFF, or BigTIFF when the pixels may not fit into 32-bit offsets. Fails with
    /// OutOfMemory.
    static Result<TiffWriter> open(std::uint64_t pixelBytes);

    [[nodiscard]] TIFF* get() const { return m_tiff.get(); }
    /// Writes the directory and gives the file. Fails with EncodingFailed.
    Result<ByteBuffer> finish() &&;
    /// The failure that the messages amount to.
    [[nodiscard]] tl::unexpected<Error> encodingFailure() const;

private:
    struct State {
        ByteBuffer file;
        std::uint64_t position = 0;
        TiffMessages messages;
    };
    friend struct TiffWriterCalls;

    std::unique_ptr<State> m_state;
    TiffHandle m_tiff;
};

} // namespace vellumine::imaging::tiff
