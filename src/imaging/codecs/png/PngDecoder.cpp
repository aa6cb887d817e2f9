#include "imaging/codecs/JumpGuard.h"
#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/png/PngChunks.h"
#include "imaging/codecs/png/PngCodec.h"
#include "imaging/codecs/png/PngColor.h"
#include "imaging/codecs/png/PngMetadata.h"
#include "imaging/codecs/png/PngTexts.h"

#include <bit>
#include <cstring>
#include <string>

#include <png.h>

namespace vellumine::imaging::png {

namespace {

/// The ancillary chunks that libpng knows and the picture does not need: what they say is read
/// elsewhere, within limits, or not at all.
constexpr std::size_t ignoredCount = 17;
constexpr std::size_t nameLength = 4; // each followed by a zero byte
constexpr std::array<png_byte, ignoredCount*(nameLength + 1)> ignoredChunks = [] {
    constexpr std::string_view names = "bKGDcHRMeXIfgAMAhISTiCCPiTXtoFFspCALpHYssBITsCALsPLTsRGB"
                                       "tEXttIMEzTXt";
    static_assert(names.size() == ignoredCount * nameLength);
    std::array<png_byte, ignoredCount*(nameLength + 1)> list {};
    for (std::size_t i = 0; i < names.size(); ++i) {
        list.at(i / nameLength * (nameLength + 1) + i % nameLength)
            = static_cast<png_byte>(names[i]);
    }
    return list;
}();

/// Decodes the rows that are asked for. libpng is fed like from a network, the whole file at once:
/// so it says which rows it has, and a file that ends behind the last row is as good as any.
class RowReader {
public:
    RowReader(const Header& header, Rect wanted, PixelBuffer& pixels);
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;
    ~RowReader() { png_destroy_read_struct(&m_library, &m_info, nullptr); }

    [[nodiscard]] Result<void> read(ByteSpan file);

private:
    static RowReader& of(png_structp library)
    {
        return *static_cast<RowReader*>(png_get_progressive_ptr(library));
    }
    static void onError(png_structp library, png_const_charp message);
    static void onWarning(png_structp library, png_const_charp message);
    static void onInfo(png_structp library, png_infop info);
    static void onRow(png_structp library, png_bytep row, png_uint_32 y, int pass);

    void configure();
    /// Has objects of its own, as no frame may that a long jump leaves: AddressSanitizer would keep
    /// them.
    [[gnu::noinline]] void takeRow(png_bytep row, int y, int pass);

    const Header& m_header;
    Rect m_wanted;
    PixelBuffer& m_pixels;
    JumpGuard m_guard;
    png_structp m_library = nullptr;
    png_infop m_info = nullptr;
    bool m_isComplete = false;
    bool m_isDamaged = false;
    std::array<char, 128> m_message {};
};

RowReader::RowReader(const Header& header, Rect wanted, PixelBuffer& pixels)
    : m_header(header)
    , m_wanted(wanted)
    , m_pixels(pixels)
{
    m_library = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, onError, onWarning);
    if (m_library != nullptr) {
        m_info = png_create_info_struct(m_library);
    }
}

void RowReader::onError(png_structp library, png_const_charp message)
{
    auto& self = *static_cast<RowReader*>(png_get_error_ptr(library));
    std::strncpy(self.m_message.data(), message, self.m_message.size() - 1);
    // Other than that the stream is too short, whatever libpng complains about is damage.
    self.m_isDamaged = self.m_isDamaged || std::strncmp(message, "Not enough", 10) != 0;
    self.m_guard.leave();
}

void RowReader::onWarning(png_structp library, png_const_charp message)
{
    // The only sign of a damaged stream: libpng then waits for rows that cannot come any more.
    if (std::strstr(message, "ADLER32") != nullptr) {
        static_cast<RowReader*>(png_get_error_ptr(library))->m_isDamaged = true;
    }
}

void RowReader::configure()
{
    png_set_user_limits(m_library, static_cast<png_uint_32>(m_header.size.width),
        static_cast<png_uint_32>(m_header.size.height));
    // The chunks have been checked, to the last one of the picture data.
    png_set_crc_action(m_library, PNG_CRC_QUIET_USE, PNG_CRC_QUIET_USE);
    png_set_benign_errors(m_library, 1);
    png_set_keep_unknown_chunks(m_library, PNG_HANDLE_CHUNK_NEVER, ignoredChunks.data(),
        static_cast<int>(ignoredChunks.size() / 5));
    png_set_progressive_read_fn(m_library, this, onInfo, onRow, nullptr);
}

void RowReader::onInfo(png_structp library, png_infop info)
{
    png_set_expand(library);
    if constexpr (std::endian::native == std::endian::little) {
        png_set_swap(library);
    }
    png_set_interlace_handling(library);
    png_read_update_info(library, info);
    const Header& header = of(library).m_header;
    if (png_get_rowbytes(library, info)
        != static_cast<std::size_t>(header.size.width)
            * static_cast<std::size_t>(header.layout().bytesPerPixel())) {
        png_error(library, "the chunks contradict each other");
    }
}

void RowReader::onRow(png_structp library, png_bytep row, png_uint_32 y, int pass)
{
    RowReader& self = of(library);
    self.takeRow(row, static_cast<int>(y), pass);
    if (self.m_isComplete) {
        self.m_guard.leave(); // what follows does not matter
    }
}

void RowReader::takeRow(png_bytep row, int y, int pass)
{
    constexpr int lastPass = 6;
    if (m_header.isInterlaced) {
        // Every pass comes with all rows; one that it says nothing about has no samples.
        png_progressive_combine_row(
            m_library, reinterpret_cast<png_bytep>(m_pixels.row(y).data()), row);
        m_isComplete = pass == lastPass && y == m_header.size.height - 1;
    } else if (y >= m_wanted.y) {
        const auto line = m_pixels.row(y - m_wanted.y);
        const auto left = static_cast<std::size_t>(m_wanted.x)
            * static_cast<std::size_t>(m_pixels.layout().bytesPerPixel());
        std::memcpy(line.data(), row + left, line.size());
        m_isComplete = y == m_wanted.y + m_wanted.height - 1;
    }
}

Result<void> RowReader::read(ByteSpan file)
{
    if (m_library == nullptr || m_info == nullptr) {
        return failure(Error::Kind::outOfMemory, "no memory for decoding");
    }
    const bool cameToTheEnd = m_guard.run([&] {
        configure();
        png_process_data(m_library, m_info,
            reinterpret_cast<png_bytep>(const_cast<std::byte*>(file.data())), file.size());
    });
    if (m_isComplete) {
        return {};
    }
    if (m_isDamaged) {
        return failure(
            Error::Kind::malformed, cameToTheEnd ? "picture data is damaged" : m_message.data());
    }
    return failure(Error::Kind::truncated, "picture data is missing");
}

} // namespace

bool sniff(ByteSpan file)
{
    return startsWith(file, signature);
}

Result<ImageHeader> readHeader(ByteSpan file)
{
    return parseHeader(file).map([](const Header& header) {
        return ImageHeader { header.size, header.layout() };
    });
}

Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options)
{
    const auto header = parseHeader(file);
    if (!header) {
        return tl::unexpected(header.error());
    }
    const PixelLayout layout = header->layout();
    if (const auto allowed
        = options.limits.check(header->size.width, header->size.height, layout.bytesPerPixel());
        !allowed) {
        return tl::unexpected(allowed.error());
    }
    if (!pictureChunksAreIntact(file)) {
        return failure(Error::Kind::malformed, "a chunk's checksum is wrong");
    }

    const Rect whole { 0, 0, header->size.width, header->size.height };
    const bool isRegion = options.wish.region && contains(header->size, *options.wish.region);
    const Rect wanted = isRegion ? *options.wish.region : whole;
    const Rect kept = header->isInterlaced ? whole : wanted;
    auto pixels = PixelBuffer::create(kept.size(), layout);
    if (!pixels) {
        return tl::unexpected(pixels.error());
    }
    if (const auto done = RowReader(*header, kept, *pixels).read(file); !done) {
        return tl::unexpected(done.error());
    }
    MetadataBlocks metadata = metadataOf(file);
    Image image(std::move(*pixels), colorSpaceOf(file, layout.model, metadata.exif));
    if (kept != wanted) {
        image = image.cropped(wanted);
    }
    DecodedImage decoded { std::move(image), header->size, isRegion, std::move(metadata),
        std::nullopt };
    decoded.resolution = resolutionOf(file);
    decoded.texts = textsOf(file);
    return decoded;
}

} // namespace vellumine::imaging::png
