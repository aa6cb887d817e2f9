#include "imaging/codecs/tiff/TiffDirectory.h"

#include "imaging/codecs/UntaggedColor.h"

#include <algorithm>
#include <cassert>
#include <span>
#include <string>

namespace vellumine::imaging::tiff {

namespace {

/// A tag's value, the standard's default when the file has none.
template <typename Value> Value tagOr(TIFF* tiff, std::uint32_t tag, Value otherwise)
{
    Value value = otherwise;
    return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : otherwise;
}

/// A tag that must be in the file itself.
template <typename Value> std::optional<Value> tagInFile(TIFF* tiff, std::uint32_t tag)
{
    Value value {};
    return TIFFGetField(tiff, tag, &value) == 1 ? std::optional(value) : std::nullopt;
}

bool isFax(std::uint16_t compression)
{
    return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW
        || compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

/// The tag is mandatory, yet files lack it.
std::optional<std::uint16_t> photometricOf(
    TIFF* tiff, int samplesPerPixel, std::uint16_t compression)
{
    if (const auto said = tagInFile<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC)) {
        return said;
    }
    if (samplesPerPixel == 1 || samplesPerPixel == 2) {
        return isFax(compression) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
    }
    if (samplesPerPixel == 3 || samplesPerPixel == 4) {
        return PHOTOMETRIC_RGB;
    }
    return std::nullopt;
}

std::optional<SampleType::Kind> sampleKind(std::uint16_t format)
{
    switch (format) {
    case SAMPLEFORMAT_UINT:
    case SAMPLEFORMAT_VOID:
        return SampleType::Kind::unsignedInteger;
    case SAMPLEFORMAT_INT:
        return SampleType::Kind::signedInteger;
    case SAMPLEFORMAT_IEEEFP:
        return SampleType::Kind::floatingPoint;
    default:
        return std::nullopt;
    }
}

struct ColourChoice {
    Colour colour;
    ColorModel model;
    int samples; ///< that make up a colour
};

Result<ColourChoice> chooseColour(TIFF* tiff, std::uint16_t photometric, std::uint16_t compression)
{
    if (compression == COMPRESSION_OJPEG || compression == COMPRESSION_SGILOG
        || compression == COMPRESSION_SGILOG24) {
        return ColourChoice { Colour::library, ColorModel::rgb, 1 };
    }
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
        return ColourChoice { Colour::invertedGrey, ColorModel::grey, 1 };
    case PHOTOMETRIC_MINISBLACK:
        return ColourChoice { Colour::direct, ColorModel::grey, 1 };
    case PHOTOMETRIC_RGB:
        return ColourChoice { Colour::direct, ColorModel::rgb, 3 };
    case PHOTOMETRIC_PALETTE:
        return ColourChoice { Colour::palette, ColorModel::rgb, 1 };
    case PHOTOMETRIC_SEPARATED:
        if (tagOr<std::uint16_t>(tiff, TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK) {
            return failure(Error::Kind::unsupported, "inks other than CMYK");
        }
        return ColourChoice { Colour::direct, ColorModel::cmyk, 4 };
    case PHOTOMETRIC_YCBCR:
        if (compression == COMPRESSION_JPEG
            && tagOr<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG)
                == PLANARCONFIG_CONTIG) {
            TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            return ColourChoice { Colour::direct, ColorModel::rgb, 3 };
        }
        return ColourChoice { Colour::library, ColorModel::rgb, 3 };
    case PHOTOMETRIC_CIELAB:
        return ColourChoice { Colour::cieLab, ColorModel::rgb, 3 };
    case PHOTOMETRIC_ICCLAB:
        return ColourChoice { Colour::iccLab, ColorModel::rgb, 3 };
    case PHOTOMETRIC_ITULAB:
        return ColourChoice { Colour::ituLab, ColorModel::rgb, 3 };
    default:
        return failure(
            Error::Kind::unsupported, "photometric interpretation " + std::to_string(photometric));
    }
}

/// The first additional sample that is declared as alpha. One that is declared as nothing in
/// particular is often a mask or garbage.
void findAlpha(TIFF* tiff, int colourSamples, TiffDirectory& directory)
{
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    if (TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1
        || kinds == nullptr) {
        return;
    }
    const std::span extra(kinds, count);
    const auto found = std::ranges::find_if(extra, [](std::uint16_t kind) {
        return kind == EXTRASAMPLE_ASSOCALPHA || kind == EXTRASAMPLE_UNASSALPHA;
    });
    const int sample = colourSamples + static_cast<int>(found - extra.begin());
    if (found == extra.end() || sample >= directory.samplesPerPixel) {
        return;
    }
    directory.alphaSample = sample;
    directory.layout.alpha
        = *found == EXTRASAMPLE_ASSOCALPHA ? AlphaInfo::premultipliedLast : AlphaInfo::last;
}

Result<void> readSampleType(TIFF* tiff, TiffDirectory& directory)
{
    const auto format = tagOr<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    const auto kind = sampleKind(format);
    if (!kind) {
        return failure(Error::Kind::unsupported, "sample format " + std::to_string(format));
    }
    directory.sample = { *kind, tagOr<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1) };
    if (!directory.sample.isSupported()) {
        return failure(
            Error::Kind::unsupported, std::to_string(directory.sample.bits) + " bits per sample");
    }
    return {};
}

/// Refuses depths that a way of colouring has no meaning for.
Result<void> checkDepth(TiffDirectory& directory)
{
    SampleType& sample = directory.sample;
    switch (directory.colour) {
    case Colour::palette:
        if (sample.bits > 16 || sample.kind != SampleType::Kind::unsignedInteger) {
            return failure(Error::Kind::unsupported, "palette indices that are no small numbers");
        }
        return {};
    case Colour::cieLab:
    case Colour::iccLab:
    case Colour::ituLab:
        if ((sample.bits != 8 && sample.bits != 16)
            || sample.kind == SampleType::Kind::floatingPoint) {
            return failure(Error::Kind::unsupported, "L*a*b* of neither 8 nor 16 bits");
        }
        sample.kind
            = SampleType::Kind::unsignedInteger; // which of them are signed is the encoding's
        return {};
    case Colour::direct:
    case Colour::invertedGrey:
    case Colour::library:
        return {};
    }
    return {};
}

void readBlocks(TIFF* tiff, TiffDirectory& directory)
{
    directory.isPlanar = directory.samplesPerPixel > 1
        && tagOr<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG)
            == PLANARCONFIG_SEPARATE;
    directory.isTiled = TIFFIsTiled(tiff) != 0;
    if (directory.isTiled) {
        directory.blockWidth = tagOr<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH, 0);
        directory.blockHeight = tagOr<std::uint32_t>(tiff, TIFFTAG_TILELENGTH, 0);
    } else {
        directory.blockWidth = directory.width;
        directory.blockHeight = std::min<std::int64_t>(
            directory.height, tagOr<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, UINT32_MAX));
    }
}

} // namespace

Result<TiffDirectory> TiffDirectory::read(TIFF* tiff)
{
    TiffDirectory directory;
    directory.width = tagInFile<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH).value_or(0);
    directory.height = tagInFile<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH).value_or(0);
    directory.samplesPerPixel = tagOr<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    const auto compression = tagOr<std::uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    if (TIFFIsCODECConfigured(compression) == 0) {
        return failure(Error::Kind::unsupported, "compression " + std::to_string(compression));
    }
    const auto photometric = photometricOf(tiff, directory.samplesPerPixel, compression);
    if (!photometric) {
        return failure(Error::Kind::malformed, "nothing says what the samples mean");
    }
    const auto choice = chooseColour(tiff, *photometric, compression);
    if (!choice) {
        return tl::unexpected(choice.error());
    }
    if (directory.samplesPerPixel < choice->samples) {
        return failure(Error::Kind::unsupported, "too few samples for the kind of colour");
    }
    directory.colour = choice->colour;
    if (auto ok = readSampleType(tiff, directory); !ok) {
        return tl::unexpected(ok.error());
    }
    if (auto ok = checkDepth(directory); !ok) {
        return tl::unexpected(ok.error());
    }
    directory.layout = { choice->model,
        directory.colour == Colour::library ? 8 : directory.sample.decodedBits(), AlphaInfo::none };
    findAlpha(tiff, choice->samples, directory);
    if (directory.colour == Colour::library && directory.alphaSample) {
        directory.layout.alpha = AlphaInfo::premultipliedLast;
    }
    readBlocks(tiff, directory);
    if (const auto tag = tagInFile<std::uint16_t>(tiff, TIFFTAG_ORIENTATION)) {
        directory.orientation = orientationFromTag(*tag);
    }
    return directory;
}

Result<void> TiffDirectory::check(const Limits& limits) const
{
    // The library converts to a raster of 32-bit words first.
    const int bytesPerPixel
        = colour == Colour::library ? 4 + layout.bytesPerPixel() : layout.bytesPerPixel();
    if (auto ok = limits.check(width, height, bytesPerPixel); !ok) {
        return ok;
    }
    const int samplesPerBlock = isPlanar ? 1 : samplesPerPixel;
    return limits.check(blockWidth, blockHeight, (samplesPerBlock * sample.bits + 7) / 8);
}

Size TiffDirectory::size() const
{
    assert(width > 0 && width <= INT32_MAX && height > 0 && height <= INT32_MAX);
    return { static_cast<int>(width), static_cast<int>(height) };
}

ColorSpace colorSpaceOf(TIFF* tiff, ByteSpan file, const TiffDirectory& directory)
{
    const ColorModel model = directory.layout.model;
    const bool wasLab = directory.colour == Colour::cieLab || directory.colour == Colour::iccLab
        || directory.colour == Colour::ituLab; // converted to sRGB, whatever is embedded
    std::uint32_t count = 0;
    const void* profile = nullptr;
    if (!wasLab && TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &count, &profile) == 1
        && profile != nullptr) {
        auto embedded
            = ColorSpace::fromIcc(ByteSpan(static_cast<const std::byte*>(profile), count), model);
        if (embedded) {
            return *std::move(embedded);
        }
    }
    return untaggedColorSpace(model, wasLab ? ByteSpan {} : file);
}

} // namespace vellumine::imaging::tiff
