#include "imaging/metadata/Exif.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace vellumine::imaging::metadata {

namespace {

constexpr std::uint16_t orientationTag = 0x0112;
constexpr std::uint16_t xResolutionTag = 0x011A;
constexpr std::uint16_t yResolutionTag = 0x011B;
constexpr std::uint16_t resolutionUnitTag = 0x0128;
constexpr std::uint16_t colorSpaceTag = 0xA001;
constexpr std::uint16_t pixelWidthTag = 0xA002;
constexpr std::uint16_t pixelHeightTag = 0xA003;
constexpr std::uint16_t subjectAreaTag = 0x9214;
constexpr std::uint16_t subjectLocationTag = 0xA214;
constexpr std::uint16_t interoperabilityIndexTag = 0x0001;

// Exif knows sRGB and "something else". Cameras say Adobe RGB with an index beside the latter
// (DCF 2.0, basic and option files).
constexpr std::uint32_t sRgbColorSpace = 1;
constexpr std::uint32_t uncalibrated = 0xFFFF;
constexpr std::string_view sRgbIndex("R98\0", 4);
constexpr std::string_view adobeRgbIndex("R03\0", 4);

// Fields of a first directory that say how its file stores the picture. Ascending.
constexpr std::array<std::uint16_t, 76> structureTags {
    0x00FE, // NewSubfileType
    0x00FF, // SubfileType
    0x0100, // ImageWidth
    0x0101, // ImageLength
    0x0102, // BitsPerSample
    0x0103, // Compression
    0x0106, // PhotometricInterpretation
    0x0107, // Threshholding
    0x0108, // CellWidth
    0x0109, // CellLength
    0x010A, // FillOrder
    0x0111, // StripOffsets
    0x0115, // SamplesPerPixel
    0x0116, // RowsPerStrip
    0x0117, // StripByteCounts
    0x0118, // MinSampleValue
    0x0119, // MaxSampleValue
    0x011C, // PlanarConfiguration
    0x0120, // FreeOffsets
    0x0121, // FreeByteCounts
    0x0122, // GrayResponseUnit
    0x0123, // GrayResponseCurve
    0x0124, // T4Options
    0x0125, // T6Options
    0x0129, // PageNumber
    0x012D, // TransferFunction
    0x013D, // Predictor
    0x013E, // WhitePoint
    0x013F, // PrimaryChromaticities
    0x0140, // ColorMap
    0x0141, // HalftoneHints
    0x0142, // TileWidth
    0x0143, // TileLength
    0x0144, // TileOffsets
    0x0145, // TileByteCounts
    0x0146, // BadFaxLines
    0x0147, // CleanFaxData
    0x0148, // ConsecutiveBadFaxLines
    0x014A, // SubIFDs
    0x014C, // InkSet
    0x014D, // InkNames
    0x014E, // NumberOfInks
    0x0150, // DotRange
    0x0152, // ExtraSamples
    0x0153, // SampleFormat
    0x0154, // SMinSampleValue
    0x0155, // SMaxSampleValue
    0x0156, // TransferRange
    0x0157, // ClipPath
    0x0158, // XClipPathUnits
    0x0159, // YClipPathUnits
    0x015A, // Indexed
    0x015B, // JPEGTables
    0x015F, // OPIProxy
    0x0190, // GlobalParametersIFD
    0x0200, // JPEGProc
    0x0201, // JPEGInterchangeFormat
    0x0202, // JPEGInterchangeFormatLength
    0x0203, // JPEGRestartInterval
    0x0205, // JPEGLosslessPredictors
    0x0206, // JPEGPointTransforms
    0x0207, // JPEGQTables
    0x0208, // JPEGDCTables
    0x0209, // JPEGACTables
    0x0211, // YCbCrCoefficients
    0x0212, // YCbCrSubSampling
    0x0213, // YCbCrPositioning
    0x0214, // ReferenceBlackWhite
    0x02BC, // XMP, a block of its own here
    0x80E3, // Matteing
    0x80E5, // ImageDepth
    0x83BB, // IPTC, a block of its own here
    0x8649, // Photoshop's resources: thumbnails, paths and guides of the old picture
    0x8773, // ICC profile
    0x935C, // Photoshop's layers
    0xEA1C, // Padding
};
static_assert(std::ranges::is_sorted(structureTags));

// The fields of DNG describe sensor data.
constexpr std::uint16_t firstRawTag = 0xC612;
constexpr std::uint16_t lastRawTag = 0xCD4B;

bool describesStructure(const TiffEntry& entry)
{
    return std::ranges::binary_search(structureTags, entry.tag)
        || (entry.tag >= firstRawTag && entry.tag <= lastRawTag)
        || entry.type == fieldtype::directory;
}

// Inside the Exif directory: how densely the old file was packed, filling, and pointers that would
// point nowhere.
bool describesExifStructure(const TiffEntry& entry)
{
    constexpr std::uint16_t compressedBitsPerPixel = 0x9102;
    constexpr std::uint16_t padding = 0xEA1C;
    return entry.tag == compressedBitsPerPixel || entry.tag == padding
        || entry.type == fieldtype::directory;
}

// The values of ResolutionUnit.
enum ResolutionUnit : std::uint32_t { noUnit = 1, inch = 2, centimetre = 3 };

void swapResolution(TiffTree& tree)
{
    for (TiffEntry& entry : tree.main.entries) {
        if (entry.tag == xResolutionTag || entry.tag == yResolutionTag) {
            entry.tag = entry.tag == xResolutionTag ? yResolutionTag : xResolutionTag;
        }
    }
    std::ranges::sort(tree.main.entries, {}, &TiffEntry::tag);
}

void setIfPresent(TiffTree& tree, std::uint16_t tag, std::uint32_t value)
{
    if (tree.exif.find(tag) != nullptr) {
        tree.exif.set(tree.integerEntry(tag, value));
    }
}

void setColorSpace(TiffTree& tree, bool isSRgb)
{
    setIfPresent(tree, colorSpaceTag, isSRgb ? sRgbColorSpace : uncalibrated);
    const TiffEntry* const index = tree.interoperability.find(interoperabilityIndexTag);
    if (isSRgb && index != nullptr) {
        const ByteSpan value = std::as_bytes(std::span(sRgbIndex));
        tree.interoperability.set(
            { interoperabilityIndexTag, fieldtype::ascii, 4, { value.begin(), value.end() } });
    }
}

} // namespace

std::optional<Orientation> exifOrientation(const TiffTree& tree)
{
    const auto value = tree.integer(tree.main.find(orientationTag));
    return value ? orientationFromTag(*value) : std::nullopt;
}

bool exifSaysAdobeRgb(const TiffTree& tree)
{
    const TiffEntry* const index = tree.interoperability.find(interoperabilityIndexTag);
    return tree.integer(tree.exif.find(colorSpaceTag)) == uncalibrated && index != nullptr
        && index->type == fieldtype::ascii
        && std::ranges::equal(index->value, std::as_bytes(std::span(adobeRgbIndex)));
}

std::optional<Resolution> exifResolution(const TiffTree& tree)
{
    const auto x = tree.number(tree.main.find(xResolutionTag));
    const auto y = tree.number(tree.main.find(yResolutionTag));
    if (!x || !y) {
        return std::nullopt;
    }
    switch (tree.integer(tree.main.find(resolutionUnitTag)).value_or(inch)) {
    case noUnit:
        return Resolution::create(*x, *y, Resolution::Unit::none);
    case inch:
        return Resolution::create(*x, *y, Resolution::Unit::inch);
    case centimetre:
        return Resolution::create(
            *x * centimetresInAMetre, *y * centimetresInAMetre, Resolution::Unit::metre);
    default:
        return std::nullopt;
    }
}

void setExifResolution(TiffTree& tree, const Resolution& resolution)
{
    Resolution said = resolution;
    std::uint32_t unit = said.unit() == Resolution::Unit::none ? noUnit : inch;
    double divisor = 1;
    if (said.unit() == Resolution::Unit::metre) {
        // In inches where that is what they were, else exactly.
        const auto inInches = said.in(Resolution::Unit::inch);
        if (inInches && std::round(inInches->x()) == inInches->x()
            && std::round(inInches->y()) == inInches->y()) {
            said = *inInches;
        } else {
            unit = centimetre;
            divisor = centimetresInAMetre;
        }
    }
    tree.main.set(tree.rationalEntry(xResolutionTag, said.x() / divisor));
    tree.main.set(tree.rationalEntry(yResolutionTag, said.y() / divisor));
    tree.main.set(tree.integerEntry(resolutionUnitTag, unit));
}

Groups exifGroups(const TiffTree& tree)
{
    Groups groups;
    groups.exif = !tree.exif.empty();
    groups.gps = !tree.gps.empty();
    groups.tiff = std::ranges::any_of(tree.main.entries, [](const TiffEntry& entry) {
        return entry.tag != orientationTag && !describesStructure(entry);
    });
    return groups;
}

void dropStructure(TiffTree& tree)
{
    std::erase_if(tree.main.entries, describesStructure);
    std::erase_if(tree.exif.entries, describesExifStructure);
}

void adjustToPicture(TiffTree& tree, const Groups& kept, const NewPicture& picture)
{
    dropStructure(tree);
    if (!kept.tiff) {
        tree.main = {};
    }
    if (!kept.exif) {
        tree.exif = {};
        tree.interoperability = {};
    }
    if (!kept.gps) {
        tree.gps = {};
    }
    if (picture.wasTurned || (!kept.tiff && !kept.exif)) {
        tree.thumbnail = {};
        tree.thumbnailData = {};
    }
    if (picture.hasSidesSwapped) {
        swapResolution(tree);
    }
    tree.main.erase(orientationTag);
    tree.thumbnail.erase(orientationTag);

    const auto width = static_cast<std::uint32_t>(picture.size.width);
    const auto height = static_cast<std::uint32_t>(picture.size.height);
    if (picture.wasTurned || tree.integer(tree.exif.find(pixelWidthTag)) != width
        || tree.integer(tree.exif.find(pixelHeightTag)) != height) {
        // They count pixels of the old picture.
        tree.exif.erase(subjectAreaTag);
        tree.exif.erase(subjectLocationTag);
    }
    setIfPresent(tree, pixelWidthTag, width);
    setIfPresent(tree, pixelHeightTag, height);
    setColorSpace(tree, picture.isSRgb);
}

} // namespace vellumine::imaging::metadata
