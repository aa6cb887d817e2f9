#include "imaging/DeferredPixels.h"
#include "imaging/Orientation.h"
#include "imaging/PixelConversion.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/codecs/jpeg/JpegCoefficients.h"
#include "imaging/codecs/jpeg/JpegErrors.h"
#include "imaging/codecs/jpeg/JpegMarkers.h"
#include "imaging/codecs/jpeg/JpegPlanes.h"
#include "imaging/ycc/BlockBands.h"
#include "imaging/ycc/PlaneSource.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

namespace vellumine::imaging::jpeg {

namespace {

/// From here on colour is kept at full resolution.
constexpr int fullColorQuality = 90;

/// Gives the library the room of a growing buffer to write into. The object's error manager must
/// be an Errors.
class Destination : public jpeg_destination_mgr {
public:
    explicit Destination(std::size_t expected)
        : jpeg_destination_mgr {}
        , m_firstRoom(expected)
    {
        init_destination = [](j_compress_ptr library) { of(library).makeRoom(library, 0); };
        empty_output_buffer = [](j_compress_ptr library) -> boolean {
            Destination& self = of(library);
            // The contract of this call: the buffer is full, whatever free_in_buffer says.
            self.makeRoom(library, self.m_bytes.size());
            return TRUE;
        };
        term_destination = [](j_compress_ptr /*library*/) {};
    }

    [[nodiscard]] ByteBuffer take() &&
    {
        m_bytes.resize(m_bytes.size() - free_in_buffer);
        return std::move(m_bytes);
    }

private:
    static Destination& of(j_compress_ptr library)
    {
        return *static_cast<Destination*>(library->dest);
    }

    void makeRoom(j_compress_ptr library, std::size_t used)
    {
        if (!grow(std::max(m_firstRoom, 2 * used))) {
            static_cast<Errors*>(library->err)
                ->fail(Error::Kind::outOfMemory, "no memory for the file");
        }
        next_output_byte = reinterpret_cast<JOCTET*>(m_bytes.data() + used);
        free_in_buffer = m_bytes.size() - used;
    }

    /// Apart from makeRoom so that nothing is left to destroy when that one leaves by long jump.
    bool grow(std::size_t size) noexcept
    {
        try {
            m_bytes.resize(size);
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }

    std::size_t m_firstRoom;
    ByteBuffer m_bytes;
};

/// What is written of which picture, and how.
struct Plan {
    const Image& image;
    ycc::BlockBands* bands = nullptr; ///< what is written in place of the picture's rows
    PixelLayout layout; ///< in which the library takes those
    J_COLOR_SPACE inputSpace; ///< what that is to the library
    /// The space of the file, where it is not the library's choice for the input.
    std::optional<J_COLOR_SPACE> fileSpace;
    int quality;
};

/// How the coefficients get into the file; they are the same ones.
enum class EntropyCoding {
    smallest, ///< progressive, with tables for this picture
    fastest,
};

class Writer {
public:
    explicit Writer(std::size_t expected)
        : m_destination(expected)
    {
        m_library.err = &m_errors;
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { jpeg_destroy_compress(&m_library); }

    Result<ByteBuffer> write(
        const Plan& plan, EntropyCoding coding, const OutgoingMarkers& markers);

private:
    void configure(const Plan& plan, EntropyCoding coding);
    void writeRows(const Image& piece);
    Result<void> writePieces(const Plan& plan);
    void writeBand(const ycc::YccPlanes& band);
    Result<void> writeBands(ycc::BlockBands& bands);

    Errors m_errors;
    Destination m_destination;
    Coefficients m_coefficients;
    jpeg_compress_struct m_library {};
};

/// As many as the library wants for a row of its blocks.
constexpr int rowsInPiece = 2 * DCTSIZE;

bool isOpaqueInPlace(const Image& piece, PixelLayout layout)
{
    const PixelLayout from = piece.layout();
    return layout.alpha == AlphaInfo::noneSkipLast && from.channels() == layout.channels()
        && isOpaque(piece);
}

/// Rows in the library's layout: where they are, past an alpha that says nothing, or a copy.
Result<Image> pieceOf(const Image& image, int top, PixelLayout layout)
{
    return image.rows({ 0, top, image.width(), std::min(rowsInPiece, image.height() - top) })
        .and_then([layout](Image&& piece) -> Result<Image> {
            return isOpaqueInPlace(piece, layout) ? std::move(piece) : relayout(piece, layout);
        });
}

/// CMYK goes into files as Adobe's programs write it, 255 for no ink: with their marker (which the
/// library sets) that is what every reader expects.
Result<Image> inverted(const Image& piece)
{
    auto target = PixelBuffer::create(piece.size(), piece.layout());
    if (!target) {
        return tl::unexpected(target.error());
    }
    for (int y = 0; y < piece.height(); ++y) {
        std::ranges::transform(
            piece.row(y), target->row(y).begin(), [](std::byte ink) { return ~ink; });
    }
    return Image(std::move(*target), piece.colorSpace());
}

void Writer::configure(const Plan& plan, EntropyCoding coding)
{
    jpeg_create_compress(&m_library);
    m_coefficients.manage(reinterpret_cast<j_common_ptr>(&m_library));
    m_library.dest = &m_destination;
    const Size size = plan.bands != nullptr ? plan.bands->size() : plan.image.size();
    m_library.image_width = static_cast<JDIMENSION>(size.width);
    m_library.image_height = static_cast<JDIMENSION>(size.height);
    m_library.input_components = plan.layout.channels();
    m_library.in_color_space = plan.inputSpace;
    jpeg_set_defaults(&m_library);
    if (plan.fileSpace) {
        jpeg_set_colorspace(&m_library, *plan.fileSpace);
    }
    jpeg_set_quality(&m_library, plan.quality, TRUE);
    if (plan.quality >= fullColorQuality) {
        m_library.comp_info[0].h_samp_factor = 1;
        m_library.comp_info[0].v_samp_factor = 1;
    }
    m_library.raw_data_in = plan.bands != nullptr ? TRUE : FALSE;
    m_library.dct_method = JDCT_ISLOW;
    if (coding == EntropyCoding::smallest) {
        m_library.optimize_coding = TRUE;
        jpeg_simple_progression(&m_library);
    }
}

void Writer::writeRows(const Image& piece)
{
    std::array<JSAMPROW, rowsInPiece> rows {};
    int count = 0;
    for (; count < piece.height(); ++count) {
        // The library only reads, its interface is from before const.
        rows.at(static_cast<std::size_t>(count)) = const_cast<JSAMPROW>(piece.row8(count));
    }
    jpeg_write_scanlines(&m_library, rows.data(), static_cast<JDIMENSION>(count));
}

Result<void> Writer::writePieces(const Plan& plan)
{
    for (int top = 0; top < plan.image.height(); top += rowsInPiece) {
        auto piece = pieceOf(plan.image, top, plan.layout);
        if (piece && plan.inputSpace == JCS_CMYK) {
            piece = inverted(*piece);
        }
        if (!piece) {
            return tl::unexpected(piece.error());
        }
        if (auto written = m_errors.run([&] { writeRows(*piece); }); !written) {
            return written;
        }
    }
    return {};
}

void Writer::writeBand(const ycc::YccPlanes& band)
{
    const int rowsOfCall = m_library.max_v_samp_factor * DCTSIZE;
    for (int row = 0;
         row < ycc::BlockBands::rows && m_library.next_scanline < m_library.image_height;
         row += rowsOfCall) {
        writePlaneRows(m_library, band, row);
    }
}

Result<void> Writer::writeBands(ycc::BlockBands& bands)
{
    for (int row = 0; row < bands.size().height; row += ycc::BlockBands::rows) {
        const auto band = bands.at(row);
        if (!band) {
            return tl::unexpected(band.error());
        }
        if (auto written = m_errors.run([&] { writeBand(**band); }); !written) {
            return written;
        }
    }
    return {};
}

Result<ByteBuffer> Writer::write(
    const Plan& plan, EntropyCoding coding, const OutgoingMarkers& markers)
{
    const auto started = m_errors.run([&] {
        configure(plan, coding);
        setResolution(m_library, markers);
        jpeg_start_compress(&m_library, TRUE);
        writeMarkers(m_library, markers);
    });
    const auto written
        = started
              .and_then([&] {
                  return plan.bands != nullptr ? writeBands(*plan.bands) : writePieces(plan);
              })
              .and_then(
                  [this] { return m_errors.run([this] { jpeg_finish_compress(&m_library); }); });
    if (!written) {
        const Error& error = written.error();
        const bool isOfTheLibrary
            = error.kind != Error::Kind::outOfMemory && error.kind != Error::Kind::io;
        return failure(isOfTheLibrary ? Error::Kind::encodingFailed : error.kind, error.detail);
    }
    return std::move(m_destination).take();
}

bool isGrey(const ycc::YccPlanes& band)
{
    for (const int plane : { 1, 2 }) {
        const Size size = band.planeSize(plane);
        for (int y = 0; y < size.height; ++y) {
            const std::uint8_t* const row = band.row(plane, y);
            if (std::any_of(row, row + size.width,
                    [](std::uint8_t sample) { return sample != CENTERJSAMPLE; })) {
                return false;
            }
        }
    }
    return true;
}

/// As every grey picture is seen to be one, and colour in the first rows of most others.
Result<bool> isGreyThroughout(const Image& image, PixelLayout layout)
{
    for (int top = 0; top < image.height(); top += rowsInPiece) {
        const auto piece = pieceOf(image, top, layout);
        if (!piece) {
            return tl::unexpected(piece.error());
        }
        if (!isGrey(*piece)) {
            return false;
        }
    }
    return true;
}

/// Whether what would be written has no colour.
Result<bool> isGreyThroughout(ycc::BlockBands& bands)
{
    for (int row = 0; row < bands.size().height; row += ycc::BlockBands::rows) {
        const auto band = bands.at(row);
        if (!band) {
            return tl::unexpected(band.error());
        }
        if (!isGrey(**band)) {
            return false;
        }
    }
    return true;
}

ByteSpan profileOf(const Image& image, const EncodeOptions& options)
{
    return options.profile == ProfilePolicy::embed ? image.colorSpace().iccProfile() : ByteSpan {};
}

/// From 1 to 100.
int qualityOf(const EncodeOptions& options)
{
    const double percent = std::isfinite(options.quality) ? options.quality * 100.0 : 100.0;
    return static_cast<int>(std::lround(std::clamp(percent, 1.0, 100.0)));
}

/// The planes of a picture whose colour the file has no finer; null when its rows are written.
std::shared_ptr<const ycc::PlaneSource> planesFor(const Image& image, const EncodeOptions& options)
{
    const bool isStoredSo = !image.hasRows() && image.layout().model == ColorModel::rgb
        && image.orientation() == Orientation::topLeft;
    return isStoredSo && qualityOf(options) < fullColorQuality ? image.deferred()->planes()
                                                               : nullptr;
}

/// In the space that the library chooses.
Plan planFor(const Image& image, const EncodeOptions& options)
{
    const int quality = qualityOf(options);
    const PixelLayout from = image.layout();
    PixelLayout layout { from.model, 8, AlphaInfo::none };
    switch (from.model) {
    case ColorModel::grey:
        return Plan { image, nullptr, layout, JCS_GRAYSCALE, std::nullopt, quality };
    case ColorModel::cmyk:
        return Plan { image, nullptr, layout, JCS_CMYK, std::nullopt, quality };
    case ColorModel::rgb:
        break;
    }
    const bool isRgba = from.bitsPerComponent == 8
        && (from.alpha == AlphaInfo::premultipliedLast || from.alpha == AlphaInfo::last
            || from.alpha == AlphaInfo::noneSkipLast);
    if (isRgba) {
        layout.alpha = AlphaInfo::noneSkipLast;
    }
    return Plan { image, nullptr, layout, isRgba ? JCS_EXT_RGBX : JCS_RGB, std::nullopt, quality };
}

Plan planFor(const Image& image, ycc::BlockBands& bands, const EncodeOptions& options)
{
    return { image, &bands, { ColorModel::rgb, 8, AlphaInfo::none }, JCS_YCbCr, std::nullopt,
        qualityOf(options) };
}

/// Whether the file of an RGB picture needs one component only: the library's luma of three equal
/// samples is the sample. Under an RGB profile such a file would be invalid.
Result<bool> maySayLess(const Plan& plan, const EncodeOptions& options)
{
    if (plan.layout.model != ColorModel::rgb || !profileOf(plan.image, options).empty()) {
        return false;
    }
    return plan.bands != nullptr ? isGreyThroughout(*plan.bands)
                                 : isGreyThroughout(plan.image, plan.layout);
}

/// The part and what takes part in smoothing its colour, in whole blocks: encoded alone they give
/// the coefficients that they give in the picture.
Rect blocksAround(Rect part, Size whole)
{
    constexpr int block = 2 * DCTSIZE;
    const auto along = [](int first, int length, int end) {
        const int begin = std::max(first / block - 1, 0) * block;
        return std::pair(begin, std::min(((first + length - 1) / block + 2) * block, end) - begin);
    };
    const auto [x, width] = along(part.x, part.width, whole.width);
    const auto [y, height] = along(part.y, part.height, whole.height);
    return { x, y, width, height };
}

Result<ByteBuffer> encode(Plan plan, const EncodeOptions& options)
{
    const auto becomesGrey = maySayLess(plan, options);
    if (!becomesGrey) {
        return tl::unexpected(becomesGrey.error());
    }
    if (*becomesGrey) {
        plan.fileSpace = JCS_GRAYSCALE;
    }
    // Seldom too little, and never much to take back.
    const Image& image = plan.image;
    const std::size_t expected = std::size_t { 4096 }
        + static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) / 4;
    return Writer(expected).write(
        plan, EntropyCoding::smallest, outgoingMarkers(profileOf(image, options), options));
}

/// A file of some blocks of the picture, of one or three components as the picture's is.
Result<ByteBuffer> encodeBlocks(
    Plan plan, Rect blocks, ColorModel model, const EncodeOptions& options)
{
    if (model == ColorModel::grey) {
        plan.fileSpace = JCS_GRAYSCALE;
    }
    const std::size_t expected = std::size_t { 4096 }
        + static_cast<std::size_t>(blocks.width) * static_cast<std::size_t>(blocks.height);
    return Writer(expected).write(plan, EntropyCoding::fastest,
        outgoingMarkers(profileOf(plan.image, options), EncodeOptions {}));
}

Result<ByteBuffer> encodeBlocks(
    const Image& image, Rect blocks, ColorModel model, const EncodeOptions& options)
{
    if (auto planes = planesFor(image, options)) {
        return ycc::BlockBands::create(std::move(planes), blocks)
            .and_then([&](ycc::BlockBands bands) {
                return encodeBlocks(planFor(image, bands, options), blocks, model, options);
            });
    }
    return image.rows(blocks).and_then([&](const Image& rows) {
        return encodeBlocks(planFor(rows, options), blocks, model, options);
    });
}

} // namespace

Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options)
{
    if (auto planes = planesFor(image, options)) {
        auto encoded
            = ycc::BlockBands::create(std::move(planes), { 0, 0, image.width(), image.height() })
                  .and_then([&](ycc::BlockBands bands) {
                      return encode(planFor(image, bands, options), options);
                  });
        if (encoded) {
            return encoded;
        }
        // Whoever has the planes may be gone, and the rows come from somewhere else then.
    }
    return encode(planFor(image, options), options);
}

Result<Image> roundTrip(const Image& image, const EncodeOptions& options, ByteSpan file, Rect part)
{
    const auto header = readHeader(file);
    if (!header) {
        return tl::unexpected(header.error());
    }
    const Rect blocks = blocksAround(part, image.size());
    return encodeBlocks(image, blocks, header->layout.model, options)
        .and_then([](ByteBuffer&& partsFile) { return decode(partsFile, {}); })
        .map([&](DecodedImage&& decoded) {
            return decoded.image.cropped(
                { part.x - blocks.x, part.y - blocks.y, part.width, part.height });
        });
}

} // namespace vellumine::imaging::jpeg
