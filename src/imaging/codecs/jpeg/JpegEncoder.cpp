#include "imaging/PixelConversion.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/codecs/jpeg/JpegCoefficients.h"
#include "imaging/codecs/jpeg/JpegErrors.h"
#include "imaging/codecs/jpeg/JpegMarkers.h"

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

/// What is written: the picture in a layout that the library takes, and how.
struct Plan {
    Image image;
    J_COLOR_SPACE inputSpace;
    /// The space of the file, where it is not the library's choice for the input.
    std::optional<J_COLOR_SPACE> fileSpace;
    int quality;
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

    Result<ByteBuffer> write(const Plan& plan, const OutgoingMarkers& markers);

private:
    void configure(const Plan& plan);
    void writeRows(const Image& image);
    void writeInvertedRows(const Image& image, std::span<JSAMPLE> scratch);

    Errors m_errors;
    Destination m_destination;
    Coefficients m_coefficients;
    jpeg_compress_struct m_library {};
};

void Writer::configure(const Plan& plan)
{
    jpeg_create_compress(&m_library);
    m_coefficients.manage(reinterpret_cast<j_common_ptr>(&m_library));
    m_library.dest = &m_destination;
    m_library.image_width = static_cast<JDIMENSION>(plan.image.width());
    m_library.image_height = static_cast<JDIMENSION>(plan.image.height());
    m_library.input_components = plan.image.layout().channels();
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
    m_library.dct_method = JDCT_ISLOW;
    m_library.optimize_coding = TRUE;
    jpeg_simple_progression(&m_library);
}

void Writer::writeRows(const Image& image)
{
    std::array<JSAMPROW, 16> rows {};
    while (m_library.next_scanline < m_library.image_height) {
        const JDIMENSION count = std::min<JDIMENSION>(
            static_cast<JDIMENSION>(rows.size()), m_library.image_height - m_library.next_scanline);
        for (JDIMENSION i = 0; i < count; ++i) {
            // The library only reads, its interface is from before const.
            rows[i]
                = const_cast<JSAMPROW>(image.row8(static_cast<int>(m_library.next_scanline + i)));
        }
        jpeg_write_scanlines(&m_library, rows.data(), count);
    }
}

/// CMYK goes into files as Adobe's programs write it, 255 for no ink: with their marker (which the
/// library sets) that is what every reader expects.
void Writer::writeInvertedRows(const Image& image, std::span<JSAMPLE> scratch)
{
    while (m_library.next_scanline < m_library.image_height) {
        const JSAMPLE* row = image.row8(static_cast<int>(m_library.next_scanline));
        std::transform(row, row + scratch.size(), scratch.begin(),
            [](JSAMPLE ink) { return static_cast<JSAMPLE>(MAXJSAMPLE - ink); });
        JSAMPROW inverted = scratch.data();
        jpeg_write_scanlines(&m_library, &inverted, 1);
    }
}

Result<ByteBuffer> Writer::write(const Plan& plan, const OutgoingMarkers& markers)
{
    std::vector<JSAMPLE> scratch;
    if (plan.inputSpace == JCS_CMYK) {
        scratch.resize(plan.image.row(0).size());
    }
    const auto written = m_errors.run([&] {
        configure(plan);
        jpeg_start_compress(&m_library, TRUE);
        writeMarkers(m_library, markers);
        if (plan.inputSpace == JCS_CMYK) {
            writeInvertedRows(plan.image, scratch);
        } else {
            writeRows(plan.image);
        }
        jpeg_finish_compress(&m_library);
    });
    if (!written) {
        const bool noMemory = written.error().kind == Error::Kind::outOfMemory;
        return failure(noMemory ? Error::Kind::outOfMemory : Error::Kind::encodingFailed,
            written.error().detail);
    }
    return std::move(m_destination).take();
}

/// Whether the library can read the pixels where they are, past an alpha that says nothing.
bool isOpaqueRgba(const Image& image)
{
    const PixelLayout layout = image.layout();
    const bool isRgba = layout.model == ColorModel::rgb && layout.bitsPerComponent == 8
        && (layout.alpha == AlphaInfo::premultipliedLast || layout.alpha == AlphaInfo::last
            || layout.alpha == AlphaInfo::noneSkipLast);
    return isRgba && isOpaque(image);
}

Result<Plan> plan(const Image& image, const EncodeOptions& options, bool hasProfile)
{
    const ColorModel model = image.layout().model;
    const bool staysRgba = isOpaqueRgba(image);
    auto flat = staysRgba ? Result<Image>(image) : relayout(image, { model, 8, AlphaInfo::none });
    if (!flat) {
        return tl::unexpected(flat.error());
    }
    const J_COLOR_SPACE rgb = staysRgba ? JCS_EXT_RGBX : JCS_RGB;
    const double percent = std::isfinite(options.quality) ? options.quality * 100.0 : 100.0;
    const int quality = static_cast<int>(std::lround(std::clamp(percent, 1.0, 100.0)));
    switch (model) {
    case ColorModel::grey:
        return Plan { std::move(*flat), JCS_GRAYSCALE, std::nullopt, quality };
    case ColorModel::rgb:
        // The library's luma of three equal samples is the sample. Under an RGB profile a file
        // with one component would be invalid.
        if (!hasProfile && isGrey(*flat)) {
            return Plan { std::move(*flat), rgb, JCS_GRAYSCALE, quality };
        }
        return Plan { std::move(*flat), rgb, std::nullopt, quality };
    case ColorModel::cmyk:
        break;
    }
    return Plan { std::move(*flat), JCS_CMYK, std::nullopt, quality };
}

} // namespace

Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options)
{
    const ByteSpan profile
        = options.profile == ProfilePolicy::embed ? image.colorSpace().iccProfile() : ByteSpan {};
    const auto planned = plan(image, options, !profile.empty());
    if (!planned) {
        return tl::unexpected(planned.error());
    }
    // Seldom too little, and never much to take back.
    const std::size_t expected = std::size_t { 4096 }
        + static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) / 4;
    return Writer(expected).write(*planned, outgoingMarkers(profile, options.metadata));
}

} // namespace vellumine::imaging::jpeg
