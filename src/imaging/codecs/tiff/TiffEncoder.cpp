#include "imaging/codecs/tiff/TiffEncoder.h"

#include "imaging/PixelConversion.h"
#include "imaging/codecs/tiff/TiffStream.h"

#include <algorithm>
#include <vector>
#include <zlib.h>

namespace vellumine::imaging::tiff {

namespace {

/// Large enough that Deflate's window is no edge any more, small enough for any reader.
constexpr std::size_t stripBytesAimedAt = std::size_t { 1 } << 20U;

/// The layout with the fewest samples that every reader of TIFF has: alpha, if any, is the last.
PixelLayout writableLayout(const Image& image, ByteSpan profile)
{
    PixelLayout layout = image.layout();
    if (layout.alpha == AlphaInfo::only) {
        return layout; // a coverage mask is a grey picture to everybody else
    }
    if (needsAlpha(image)) {
        // Grey with a premultiplied alpha would be smaller, but some readers refuse it.
        layout.alpha
            = isPremultiplied(layout.alpha) ? AlphaInfo::premultipliedLast : AlphaInfo::last;
        return layout;
    }
    layout.alpha = AlphaInfo::none;
    // A profile is for the colour model that it was made for.
    if (profile.empty() && isGrey(image)) {
        layout.model = ColorModel::grey;
    }
    return layout;
}

std::uint16_t photometricFor(PixelLayout layout)
{
    if (layout.alpha == AlphaInfo::only) {
        return PHOTOMETRIC_MINISBLACK;
    }
    switch (layout.model) {
    case ColorModel::grey:
        return PHOTOMETRIC_MINISBLACK;
    case ColorModel::rgb:
        return PHOTOMETRIC_RGB;
    case ColorModel::cmyk:
        return PHOTOMETRIC_SEPARATED;
    }
    return PHOTOMETRIC_RGB;
}

/// Sets the tags in an order that the library accepts; the answers are bits of one conjunction.
bool setTags(
    TIFF* tiff, const Image& image, ByteSpan profile, Effort effort, std::uint32_t stripRows)
{
    const PixelLayout layout = image.layout();
    bool ok = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width()) == 1
        && TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height()) == 1
        && TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, layout.bitsPerComponent) == 1
        && TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, layout.channels()) == 1
        && TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometricFor(layout)) == 1
        && TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1
        && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, stripRows) == 1
        && TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) == 1
        && TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) == 1
        && TIFFSetField(tiff, TIFFTAG_ZIPQUALITY,
               effort == Effort::smallest ? Z_BEST_COMPRESSION : Z_BEST_SPEED)
            == 1;
    if (hasAlpha(layout.alpha)) {
        const std::uint16_t kind
            = isPremultiplied(layout.alpha) ? EXTRASAMPLE_ASSOCALPHA : EXTRASAMPLE_UNASSALPHA;
        ok = ok && TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind) == 1;
    }
    if (!profile.empty()) {
        ok = ok
            && TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()),
                   profile.data())
                == 1;
    }
    return ok;
}

} // namespace

Result<ByteBuffer> encodePicture(const Image& image, const EncodeOptions& options)
{
    const ByteSpan profile
        = options.profile == ProfilePolicy::embed ? image.colorSpace().iccProfile() : ByteSpan {};
    const auto picture = relayout(image, writableLayout(image, profile));
    if (!picture) {
        return tl::unexpected(picture.error());
    }
    const std::size_t rowBytes = static_cast<std::size_t>(picture->width())
        * static_cast<std::size_t>(picture->layout().bytesPerPixel());
    const auto height = static_cast<std::size_t>(picture->height());
    const std::size_t stripRows = std::clamp<std::size_t>(stripBytesAimedAt / rowBytes, 1, height);

    auto writer = TiffWriter::open(rowBytes * height);
    if (!writer) {
        return tl::unexpected(writer.error());
    }
    if (!setTags(writer->get(), *picture, profile, options.effort,
            static_cast<std::uint32_t>(stripRows))) {
        return writer->encodingFailure();
    }
    std::vector<std::byte> strip; // a copy, since the library differences it in place
    std::uint32_t index = 0;
    for (std::size_t top = 0; top < height; top += stripRows, ++index) {
        strip.clear();
        for (std::size_t y = top; y < std::min(top + stripRows, height); ++y) {
            const auto row = picture->row(static_cast<int>(y)).first(rowBytes);
            strip.insert(strip.end(), row.begin(), row.end());
        }
        if (TIFFWriteEncodedStrip(
                writer->get(), index, strip.data(), static_cast<tmsize_t>(strip.size()))
            < 0) {
            return writer->encodingFailure();
        }
    }
    return std::move(*writer).finish();
}

} // namespace vellumine::imaging::tiff
