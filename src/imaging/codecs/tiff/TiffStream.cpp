#include "imaging/codecs/tiff/TiffStream.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <string_view>

namespace vellumine::imaging::tiff {

namespace {

struct OptionsDeleter {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};
using OpenOptions = std::unique_ptr<TIFFOpenOptions, OptionsDeleter>;

constexpr tmsize_t ioFailed = -1;

/// How the decompressors word it that a strip or tile ends too early or is beyond decoding. The fax
/// and JPEG ones report success afterwards, so the wording is all there is to go by.
constexpr std::array<std::string_view, 8> phrasesOfMissingData { "remature E", "remature end",
    "bad Huffman code", "Read error", "read error", "ot enough data", "Invalid strip byte count",
    "Invalid tile byte count" };

/// The format strings are the library's own.
[[gnu::format(printf, 1, 0)]] std::string formatted(const char* format, va_list arguments)
{
    std::array<char, 512> text {};
    (void)std::vsnprintf(text.data(), text.size(), format, arguments);
    return text.data();
}

void noteMissingData(TiffMessages& messages, std::string_view text)
{
    messages.dataMissing |= std::ranges::any_of(phrasesOfMissingData,
        [text](std::string_view phrase) { return text.find(phrase) != std::string_view::npos; });
}

[[gnu::format(printf, 4, 0)]] int onError(
    TIFF* /*tiff*/, void* messages, const char* module, const char* format, va_list arguments)
{
    auto& log = *static_cast<TiffMessages*>(messages);
    const std::string text = formatted(format, arguments);
    noteMissingData(log, text);
    log.lastError = module != nullptr ? std::string(module) + ": " + text : text;
    return 1; // handled: not passed on to the process-wide handler, which prints
}

[[gnu::format(printf, 4, 0)]] int onWarning(
    TIFF* /*tiff*/, void* messages, const char* /*module*/, const char* format, va_list arguments)
{
    noteMissingData(*static_cast<TiffMessages*>(messages), formatted(format, arguments));
    return 1;
}

OpenOptions optionsFor(TiffMessages& messages)
{
    OpenOptions options(TIFFOpenOptionsAlloc());
    if (options) {
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), onError, &messages);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), onWarning, &messages);
    }
    return options;
}

template <typename State> State& stateOf(thandle_t handle)
{
    return *static_cast<State*>(handle);
}

/// The position after a seek, nothing when it would lie before the start or beyond what an offset
/// can say.
std::uint64_t soughtPosition(std::uint64_t current, std::uint64_t size, toff_t offset, int whence)
{
    const std::uint64_t base = whence == SEEK_SET ? 0 : (whence == SEEK_CUR ? current : size);
    return base + offset; // relative offsets are negative numbers modulo 2^64
}

int closeNothing(thandle_t /*handle*/)
{
    return 0;
}

tmsize_t refuseToWrite(thandle_t /*handle*/, void* /*data*/, tmsize_t /*size*/)
{
    return ioFailed;
}

} // namespace

Error TiffMessages::failureOf(const std::string& fallback) const
{
    return { dataMissing ? Error::Kind::truncated : Error::Kind::malformed,
        lastError.empty() ? fallback : lastError };
}

struct TiffReaderCalls {
    using State = TiffReader::State;

    static tmsize_t read(thandle_t handle, void* data, tmsize_t size)
    {
        auto& state = stateOf<State>(handle);
        if (size < 0 || state.position > state.file.size()) {
            return 0;
        }
        const std::size_t count = std::min<std::size_t>(static_cast<std::size_t>(size),
            state.file.size() - static_cast<std::size_t>(state.position));
        if (count > 0) {
            std::memcpy(data, state.file.data() + state.position, count);
        }
        state.position += count;
        return static_cast<tmsize_t>(count);
    }

    static toff_t seek(thandle_t handle, toff_t offset, int whence)
    {
        auto& state = stateOf<State>(handle);
        state.position = soughtPosition(state.position, state.file.size(), offset, whence);
        return state.position;
    }

    static toff_t size(thandle_t handle) { return stateOf<State>(handle).file.size(); }

    /// The file is in memory already, so the library gets it as it is and copies nothing. It only
    /// reads from a mapping; the interface predates const.
    static int map(thandle_t handle, void** base, toff_t* size)
    {
        const auto& state = stateOf<State>(handle);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
        *base = const_cast<std::byte*>(state.file.data());
        *size = state.file.size();
        return 1;
    }

    static void unmap(thandle_t /*handle*/, void* /*base*/, toff_t /*size*/) { }
};

Result<TiffReader> TiffReader::open(ByteSpan file, std::uint64_t maximumAllocation)
{
    TiffReader reader;
    reader.m_state = std::make_unique<State>(State { file, 0, {} });
    const OpenOptions options = optionsFor(reader.m_state->messages);
    if (!options) {
        return failure(Error::Kind::outOfMemory, "no memory for the TIFF reader");
    }
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<tmsize_t>::max());
    TIFFOpenOptionsSetMaxSingleMemAlloc(
        options.get(), static_cast<tmsize_t>(std::min(maximumAllocation, largest)));
    using Calls = TiffReaderCalls;
    reader.m_tiff.reset(
        TIFFClientOpenExt("picture", "r", reader.m_state.get(), Calls::read, refuseToWrite,
            Calls::seek, closeNothing, Calls::size, Calls::map, Calls::unmap, options.get()));
    if (!reader.m_tiff) {
        return tl::unexpected(reader.messages().failureOf("not a TIFF file"));
    }
    return reader;
}

struct TiffWriterCalls {
    using State = TiffWriter::State;

    /// The library reads back what it wrote when it links directories.
    static tmsize_t read(thandle_t handle, void* data, tmsize_t size)
    {
        auto& state = stateOf<State>(handle);
        if (size < 0 || state.position > state.file.size()) {
            return 0;
        }
        const std::size_t count = std::min<std::size_t>(
            static_cast<std::size_t>(size), state.file.size() - state.position);
        std::copy_n(state.file.begin() + static_cast<std::ptrdiff_t>(state.position), count,
            static_cast<std::byte*>(data));
        state.position += count;
        return static_cast<tmsize_t>(count);
    }

    static tmsize_t write(thandle_t handle, void* data, tmsize_t size)
    {
        auto& state = stateOf<State>(handle);
        if (size < 0) {
            return ioFailed;
        }
        const auto count = static_cast<std::size_t>(size);
        try {
            if (state.position + count > state.file.size()) {
                state.file.resize(state.position + count);
            }
        } catch (const std::exception&) {
            return ioFailed; // must not travel through the library's C frames
        }
        std::copy_n(static_cast<const std::byte*>(data), count,
            state.file.begin() + static_cast<std::ptrdiff_t>(state.position));
        state.position += count;
        return size;
    }

    static toff_t seek(thandle_t handle, toff_t offset, int whence)
    {
        auto& state = stateOf<State>(handle);
        state.position = soughtPosition(state.position, state.file.size(), offset, whence);
        return state.position;
    }

    static toff_t size(thandle_t handle) { return stateOf<State>(handle).file.size(); }
};

Result<TiffWriter> TiffWriter::open(std::uint64_t pixelBytes)
{
    TiffWriter writer;
    writer.m_state = std::make_unique<State>();
    const OpenOptions options = optionsFor(writer.m_state->messages);
    // Incompressible pixels grow a little, and the directory and the metadata follow them.
    constexpr std::uint64_t classicMaximum = 0xE000'0000;
    const char* const mode = pixelBytes > classicMaximum ? "wl8" : "wl";
    using Calls = TiffWriterCalls;
    if (options) {
        writer.m_tiff.reset(TIFFClientOpenExt("picture", mode, writer.m_state.get(), Calls::read,
            Calls::write, Calls::seek, closeNothing, Calls::size, nullptr, nullptr, options.get()));
    }
    if (!writer.m_tiff) {
        return failure(Error::Kind::outOfMemory, "no memory for the TIFF writer");
    }
    return writer;
}

tl::unexpected<Error> TiffWriter::encodingFailure() const
{
    return failure(Error::Kind::encodingFailed, m_state->messages.lastError);
}

Result<ByteBuffer> TiffWriter::finish() &&
{
    if (TIFFWriteDirectory(m_tiff.get()) == 0) {
        return encodingFailure();
    }
    m_tiff.reset();
    return std::move(m_state->file);
}

} // namespace vellumine::imaging::tiff
