#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/UntaggedColor.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/codecs/jpeg/JpegCoefficients.h"
#include "imaging/codecs/jpeg/JpegErrors.h"
#include "imaging/codecs/jpeg/JpegLeftovers.h"
#include "imaging/codecs/jpeg/JpegMarkers.h"
#include "imaging/codecs/jpeg/JpegPlanes.h"
#include "imaging/codecs/jpeg/JpegScans.h"
#include "imaging/codecs/jpeg/JpegSource.h"
#include "imaging/metadata/Metadata.h"
#include "imaging/ycc/PlannedDrawing.h"
#include "imaging/ycc/YccPixels.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace vellumine::imaging::jpeg {

namespace {

/// One file being read. The library's object points into this one, so it stays where it is.
class Reader {
public:
    explicit Reader(ByteSpan file)
        : m_source(file)
    {
        m_library.err = &m_errors;
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { jpeg_destroy_decompress(&m_library); }

    enum class Markers { ignore, keep };
    Result<ImageHeader> readHeader(Markers markers);
    Result<DecodedImage> decode(const DecodeOptions& options);

private:
    /// Columns and rows to decode; the width is what the library makes of the wish.
    struct Window {
        JDIMENSION x = 0;
        JDIMENSION y = 0;
        JDIMENSION width = 0;
        JDIMENSION height = 0;
    };

    [[nodiscard]] Result<void> checkLimits(const ImageHeader& header, const Limits& limits) const;
    [[nodiscard]] std::uint64_t coefficientBytes() const;
    [[nodiscard]] Result<void> start();
    Window windowFor(const std::optional<Rect>& region);
    void readRows(const Window& window, PixelBuffer& pixels);
    Result<Image> decodeRows(PixelLayout layout, const std::optional<Rect>& region);
    Result<Image> decodePlanes(PixelLayout layout, ycc::Subsampling subsampling);
    [[nodiscard]] std::unique_ptr<ycc::PlannedDrawing> plannedDrawing(
        const DecodeOptions& options, ycc::Subsampling subsampling) const;
    Result<Image> decodeDrawing(
        PixelLayout layout, ycc::Subsampling subsampling, ycc::PlannedDrawing& drawing);
    [[nodiscard]] Size storedSize() const;
    [[nodiscard]] ColorSpace colorSpace(ColorModel model) const;

    Errors m_errors;
    Source m_source;
    ScanWatch m_scans;
    Coefficients m_coefficients;
    jpeg_decompress_struct m_library {};
};

Result<PixelLayout> layoutOf(const jpeg_decompress_struct& library)
{
    switch (library.jpeg_color_space) {
    case JCS_GRAYSCALE:
        return PixelLayout { ColorModel::grey, 8, AlphaInfo::none };
    case JCS_RGB:
    case JCS_YCbCr:
        return PixelLayout { ColorModel::rgb, 8, AlphaInfo::none };
    case JCS_CMYK:
    case JCS_YCCK:
        return PixelLayout { ColorModel::cmyk, 8, AlphaInfo::none };
    default:
        return failure(Error::Kind::unsupported, "not grey, RGB or CMYK");
    }
}

J_COLOR_SPACE outputSpace(ColorModel model)
{
    switch (model) {
    case ColorModel::grey:
        return JCS_GRAYSCALE;
    case ColorModel::rgb:
        return JCS_RGB;
    case ColorModel::cmyk:
        return JCS_CMYK;
    }
    return JCS_UNKNOWN;
}

Size Reader::storedSize() const
{
    return { static_cast<int>(m_library.image_width), static_cast<int>(m_library.image_height) };
}

Result<ImageHeader> Reader::readHeader(Markers markers)
{
    const auto read = m_errors.run([this, markers] {
        jpeg_create_decompress(&m_library);
        m_coefficients.manage(reinterpret_cast<j_common_ptr>(&m_library));
        m_library.src = &m_source;
        if (markers == Markers::keep) {
            keepMarkers(m_library);
        }
        jpeg_read_header(&m_library, TRUE);
    });
    if (!read) {
        return tl::unexpected(read.error());
    }
    return layoutOf(m_library).map([this](PixelLayout layout) {
        return ImageHeader { storedSize(), layout };
    });
}

/// What the library keeps of a file with several scans until the last one is read.
std::uint64_t Reader::coefficientBytes() const
{
    if (jpeg_has_multiple_scans(const_cast<j_decompress_ptr>(&m_library)) == FALSE) {
        return 0;
    }
    std::uint64_t blocks = 0;
    for (const auto& component : components(m_library)) {
        blocks += blocksOf(component);
    }
    return blocks * sizeof(JBLOCK);
}

Result<void> Reader::checkLimits(const ImageHeader& header, const Limits& limits) const
{
    Limits rest = limits;
    rest.maximumBytes -= std::min(rest.maximumBytes, coefficientBytes());
    return rest.check(header.size.width, header.size.height, header.layout.bytesPerPixel());
}

/// Limits the output to the part of the picture. What surrounds a sample takes part in smoothing
/// its colour, so that the columns get a margin of blocks on both sides; the library sees to the
/// rows itself.
Reader::Window Reader::windowFor(const std::optional<Rect>& region)
{
    Window window { 0, 0, m_library.output_width, m_library.output_height };
    if (region) {
        const auto margin = static_cast<JDIMENSION>(2 * DCTSIZE * m_library.max_h_samp_factor);
        const auto left = static_cast<JDIMENSION>(region->x);
        const auto right = left + static_cast<JDIMENSION>(region->width);
        window.x = left - std::min(left, margin);
        window.width = std::min(right + margin, m_library.output_width) - window.x;
        window.y = static_cast<JDIMENSION>(region->y);
        window.height = static_cast<JDIMENSION>(region->height);
        jpeg_crop_scanline(&m_library, &window.x, &window.width);
    }
    return window;
}

void Reader::readRows(const Window& window, PixelBuffer& pixels)
{
    // As many as one call of the library ever fills.
    std::array<JSAMPROW, std::size_t { DCTSIZE } * MAX_SAMP_FACTOR> rows {};
    if (window.y > 0) {
        jpeg_skip_scanlines(&m_library, window.y);
    }
    JDIMENSION done = 0;
    while (done < window.height) {
        const auto count
            = std::min<JDIMENSION>(static_cast<JDIMENSION>(rows.size()), window.height - done);
        for (JDIMENSION i = 0; i < count; ++i) {
            rows[i] = pixels.row8(static_cast<int>(done + i));
        }
        done += jpeg_read_scanlines(&m_library, rows.data(), count);
    }
}

/// Adobe's programs write CMYK upside down, 255 for no ink, and say so only by their marker. A
/// file without the marker holds ink as the picture does.
void invert(PixelBuffer& pixels)
{
    for (std::byte& sample : pixels.bytes()) {
        sample = ~sample;
    }
}

ColorSpace Reader::colorSpace(ColorModel model) const
{
    const ByteBuffer profile = iccProfile(m_library);
    if (!profile.empty()) {
        if (auto space = ColorSpace::fromIcc(profile, model)) {
            return std::move(*space);
        }
    }
    return untaggedColorSpace(model, exif(m_library));
}

/// Starts the output.
Result<void> Reader::start()
{
    m_source.setAtEnd(m_library.arith_code ? AtEnd::fail : AtEnd::pretendEndMarker);
    m_library.progress = &m_scans;
    m_library.dct_method = JDCT_ISLOW;
    m_library.do_fancy_upsampling = TRUE;
    return m_errors.run([this] { jpeg_start_decompress(&m_library); }).and_then([this] {
        return m_scans.checkComplete(m_library, m_source);
    });
}

Result<Image> Reader::decodeRows(PixelLayout layout, const std::optional<Rect>& region)
{
    m_library.out_color_space = outputSpace(layout.model);
    if (auto started = start(); !started) {
        return tl::unexpected(started.error());
    }
    Window window;
    if (auto found = m_errors.run([&] { window = windowFor(region); }); !found) {
        return tl::unexpected(found.error());
    }
    auto pixels = PixelBuffer::create(
        { static_cast<int>(window.width), static_cast<int>(window.height) }, layout);
    if (!pixels) {
        return tl::unexpected(pixels.error());
    }
    if (auto done = m_errors.run([&] { readRows(window, *pixels); }); !done) {
        return tl::unexpected(done.error());
    }
    if (layout.model == ColorModel::cmyk && m_library.saw_Adobe_marker) {
        invert(*pixels);
    }
    Image image(std::move(*pixels), colorSpace(layout.model));
    return region ? image.cropped(
               { region->x - static_cast<int>(window.x), 0, region->width, region->height })
                  : image;
}

/// The samples as the file has them, for a picture that is scaled before it becomes RGB.
Result<Image> Reader::decodePlanes(PixelLayout layout, ycc::Subsampling subsampling)
{
    m_library.raw_data_out = TRUE;
    if (auto started = start(); !started) {
        return tl::unexpected(started.error());
    }
    auto planes = makePlanes(m_library, subsampling, m_coefficients);
    if (!planes) {
        return tl::unexpected(planes.error());
    }
    const auto done = m_errors.run([&] {
        while (m_library.output_scanline < m_library.output_height) {
            readPlaneRows(m_library, *planes, static_cast<int>(m_library.output_scanline));
        }
    });
    if (!done) {
        return tl::unexpected(done.error());
    }
    const Size size = planes->size();
    ColorSpace space = colorSpace(ColorModel::rgb);
    auto pixels = std::make_shared<ycc::YccPixels>(std::move(*planes), space);
    return Image(size, layout, std::move(space), std::move(pixels), Orientation::topLeft);
}

/// What is drawn while decoding; null when the picture is better decoded first, or has to be.
std::unique_ptr<ycc::PlannedDrawing> Reader::plannedDrawing(
    const DecodeOptions& options, ycc::Subsampling subsampling) const
{
    const auto& plan = options.wish.plan;
    if (!plan || ycc::YccBand::rows % rowsOfCall(m_library) != 0) {
        return nullptr;
    }
    const Size stored = storedSize();
    if (plan->size == stored && plan->turnedSize == Size { stored.height, stored.width }) {
        return nullptr; // in its own size, whatever its orientation is
    }
    const ColorSpace space = colorSpace(ColorModel::rgb);
    const Drawing drawing = plan->drawing(
        metadata::orientation(metadata(m_library)).value_or(Orientation::topLeft), space);
    if (!ycc::PlannedDrawing::isFor(drawing, stored)
        || !options.limits.check(
            drawing.size.width, drawing.size.height, rgba8Premultiplied.bytesPerPixel())) {
        return nullptr;
    }
    return ycc::PlannedDrawing::create(stored, subsampling, space, drawing, plan->middle)
        .value_or(nullptr);
}

/// The picture as it will be drawn, and its middle: some rows at a time, whatever its size is.
Result<Image> Reader::decodeDrawing(
    PixelLayout layout, ycc::Subsampling subsampling, ycc::PlannedDrawing& drawing)
{
    m_library.raw_data_out = TRUE;
    if (auto started = start(); !started) {
        return tl::unexpected(started.error());
    }
    auto rows = makePlanes(m_library, subsampling, ycc::YccBand::rows);
    if (!rows) {
        return tl::unexpected(rows.error());
    }
    while (m_library.output_scanline < m_library.output_height) {
        const auto done = m_errors.run([&] {
            for (int row = 0;
                 row < ycc::YccBand::rows && m_library.output_scanline < m_library.output_height;
                 row += rowsOfCall(m_library)) {
                readPlaneRows(m_library, *rows, row);
            }
        });
        if (!done) {
            return tl::unexpected(done.error());
        }
        drawing.take(*rows);
    }
    ColorSpace space = drawing.colorSpace();
    return Image(
        storedSize(), layout, std::move(space), std::move(drawing).finish(), Orientation::topLeft);
}

Result<DecodedImage> Reader::decode(const DecodeOptions& options)
{
    const auto header = readHeader(Markers::keep);
    if (!header) {
        return tl::unexpected(header.error());
    }
    if (const auto allowed = checkLimits(*header, options.limits); !allowed) {
        return tl::unexpected(allowed.error());
    }
    std::optional<Rect> region = options.wish.region;
    if (region && !contains(header->size, *region)) {
        region.reset();
    }
    const auto planes = options.wish.use == ImageUse::toBeDrawn && !region ? subsampling(m_library)
                                                                           : std::nullopt;
    const auto drawing = planes ? plannedDrawing(options, *planes) : nullptr;
    const auto decoded = [&] {
        if (drawing) {
            return decodeDrawing(header->layout, *planes, *drawing);
        }
        return planes ? decodePlanes(header->layout, *planes) : decodeRows(header->layout, region);
    };
    auto image = decoded();
    if (!image) {
        return tl::unexpected(image.error());
    }
    return checkBehindLastRow(m_library).map([&] {
        return DecodedImage { std::move(*image), header->size, region.has_value(),
            metadata(m_library), std::nullopt, drawing != nullptr, Orientation::topLeft,
            resolution(m_library), comments(m_library) };
    });
}

} // namespace

bool sniff(ByteSpan file)
{
    return startsWith(file, "\xFF\xD8\xFF");
}

Result<ImageHeader> readHeader(ByteSpan file)
{
    return Reader(file).readHeader(Reader::Markers::ignore);
}

Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options)
{
    return Reader(file).decode(options);
}

} // namespace vellumine::imaging::jpeg
