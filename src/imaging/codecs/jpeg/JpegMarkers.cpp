#include "imaging/codecs/jpeg/JpegMarkers.h"

#include "imaging/codecs/MetadataCarriers.h"

#include <array>

namespace vellumine::imaging::jpeg {

namespace {

constexpr int exifAndXmpMarker = JPEG_APP0 + 1;
constexpr int iccMarker = JPEG_APP0 + 2;
constexpr int photoshopMarker = JPEG_APP0 + 13;

constexpr std::string_view iccSignature { "ICC_PROFILE\0", 12 };
/// Signature, number of this piece from 1, count of pieces.
constexpr std::size_t iccOverhead = iccSignature.size() + 2;

/// A segment's length field counts itself.
constexpr std::size_t maximumSegment = 65533;
/// The XMP specification's number, two bytes below what would fit.
constexpr std::size_t maximumXmp = 65502;
constexpr std::size_t maximumIccProfile = 255 * (maximumSegment - iccOverhead);

/// The units of a JFIF header's density.
enum DensityUnit : UINT8 { noUnit = 0, inch = 1, centimetre = 2 };
constexpr std::uint32_t maximumDensity = 0xFFFF;

ByteSpan contentOf(const jpeg_marker_struct& marker)
{
    return std::as_bytes(std::span(marker.data, marker.data_length));
}

struct Density {
    DensityUnit unit;
    Resolution::WholeNumbers numbers;
};

/// What was given in centimetres, or is whole in them, stays so; else it is rounded to whole pixels
/// an inch.
std::optional<Density> densityOf(const Resolution& resolution)
{
    using Unit = Resolution::Unit;
    if (resolution.unit() == Unit::metre) {
        const auto perMetre = resolution.rounded(Unit::metre, centimetresInAMetre * maximumDensity);
        if (perMetre && perMetre->x % centimetresInAMetre == 0
            && perMetre->y % centimetresInAMetre == 0) {
            return Density { centimetre,
                { perMetre->x / centimetresInAMetre, perMetre->y / centimetresInAMetre } };
        }
    }
    const bool isRatio = resolution.unit() == Unit::none;
    const auto numbers = resolution.rounded(isRatio ? Unit::none : Unit::inch, maximumDensity);
    return numbers ? std::optional(Density { isRatio ? noUnit : inch, *numbers }) : std::nullopt;
}

ByteBuffer toBuffer(ByteSpan bytes)
{
    return { bytes.begin(), bytes.end() };
}

} // namespace

void keepMarkers(jpeg_decompress_struct& library)
{
    for (const int marker : { exifAndXmpMarker, iccMarker, photoshopMarker, int { JPEG_COM } }) {
        jpeg_save_markers(&library, marker, 0xFFFF);
    }
}

ByteBuffer iccProfile(const jpeg_decompress_struct& library)
{
    std::array<ByteSpan, 256> pieces;
    std::size_t count = 0;
    for (const auto* marker = library.marker_list; marker != nullptr; marker = marker->next) {
        const ByteSpan content = contentOf(*marker);
        if (marker->marker != iccMarker || !startsWith(content, iccSignature)
            || content.size() <= iccOverhead) {
            continue;
        }
        const auto number = std::to_integer<std::size_t>(content[iccSignature.size()]);
        const auto announced = std::to_integer<std::size_t>(content[iccSignature.size() + 1]);
        if (number == 0 || number > announced || (count != 0 && count != announced)
            || !pieces.at(number).empty()) {
            return {};
        }
        count = announced;
        pieces.at(number) = content.subspan(iccOverhead);
    }
    ByteBuffer profile;
    for (std::size_t number = 1; number <= count; ++number) {
        if (pieces.at(number).empty()) {
            return {};
        }
        append(profile, pieces.at(number));
    }
    return profile;
}

ByteSpan exif(const jpeg_decompress_struct& library)
{
    for (const auto* marker = library.marker_list; marker != nullptr; marker = marker->next) {
        // Some writers end the signature with 0xFF.
        if (marker->marker == exifAndXmpMarker
            && startsWith(contentOf(*marker), exifSignature.substr(0, 5))) {
            if (const ByteSpan block = exifBlock(contentOf(*marker)); !block.empty()) {
                return block;
            }
        }
    }
    return {};
}

MetadataBlocks metadata(const jpeg_decompress_struct& library)
{
    MetadataBlocks blocks;
    blocks.exif = toBuffer(exif(library));
    ByteBuffer photoshop;
    for (const auto* marker = library.marker_list; marker != nullptr; marker = marker->next) {
        const ByteSpan content = contentOf(*marker);
        if (marker->marker == exifAndXmpMarker) {
            if (blocks.xmp.empty() && startsWith(content, xmpSignature)) {
                blocks.xmp = toBuffer(content.subspan(xmpSignature.size()));
            }
        } else if (marker->marker == photoshopMarker && startsWith(content, photoshopSignature)) {
            // Resources that are too long for one segment go on in the next.
            append(photoshop, content.subspan(photoshopSignature.size()));
        }
    }
    blocks.iptc = toBuffer(iptcBlock(photoshop));
    return blocks;
}

FileTexts comments(const jpeg_decompress_struct& library)
{
    FileTexts comments;
    for (const auto* marker = library.marker_list; marker != nullptr; marker = marker->next) {
        if (marker->marker == JPEG_COM && marker->data_length > 0) {
            comments.add({ .content = toBuffer(contentOf(*marker)) });
        }
    }
    return comments;
}

std::optional<Resolution> resolution(const jpeg_decompress_struct& library)
{
    const unsigned x = library.X_density;
    const unsigned y = library.Y_density;
    if (!library.saw_JFIF_marker) {
        return std::nullopt;
    }
    switch (library.density_unit) {
    case noUnit:
        return x == 1 && y == 1 ? std::nullopt : Resolution::create(x, y, Resolution::Unit::none);
    case inch:
        return Resolution::create(x, y, Resolution::Unit::inch);
    case centimetre:
        return Resolution::create(
            centimetresInAMetre * x, centimetresInAMetre * y, Resolution::Unit::metre);
    default:
        return std::nullopt;
    }
}

OutgoingMarkers outgoingMarkers(ByteSpan profile, const EncodeOptions& options)
{
    const MetadataBlocks& blocks = options.metadata;
    OutgoingMarkers markers;
    const auto add = [&markers](int marker, std::string_view signature, ByteSpan content) {
        if (signature.size() + content.size() > maximumSegment) {
            return;
        }
        ByteBuffer data;
        append(data, signature);
        append(data, content);
        markers.segments.push_back({ marker, std::move(data) });
    };
    if (!blocks.exif.empty()) {
        add(exifAndXmpMarker, exifSignature, blocks.exif);
    }
    if (!blocks.xmp.empty() && blocks.xmp.size() <= maximumXmp) {
        add(exifAndXmpMarker, xmpSignature, blocks.xmp);
    }
    if (!blocks.iptc.empty()) {
        add(photoshopMarker, photoshopSignature, photoshopResources(blocks.iptc));
    }
    for (const FileText& comment : options.texts.list()) {
        if (!comment.content.empty()) {
            add(JPEG_COM, {}, comment.content);
        }
    }
    if (profile.size() <= maximumIccProfile) {
        markers.iccProfile = toBuffer(profile);
    }
    markers.resolution = options.resolution;
    return markers;
}

void setResolution(jpeg_compress_struct& library, const OutgoingMarkers& markers)
{
    const auto density = markers.resolution ? densityOf(*markers.resolution) : std::nullopt;
    if (!density) {
        return;
    }
    // JFIF is not made for four inks, but there is no other place, and their programs look there.
    library.write_JFIF_header = TRUE;
    library.density_unit = density->unit;
    library.X_density = static_cast<UINT16>(density->numbers.x);
    library.Y_density = static_cast<UINT16>(density->numbers.y);
}

void writeMarkers(jpeg_compress_struct& library, const OutgoingMarkers& markers)
{
    for (const auto& segment : markers.segments) {
        jpeg_write_marker(&library, segment.marker,
            reinterpret_cast<const JOCTET*>(segment.data.data()),
            static_cast<unsigned>(segment.data.size()));
    }
    if (!markers.iccProfile.empty()) {
        jpeg_write_icc_profile(&library, reinterpret_cast<const JOCTET*>(markers.iccProfile.data()),
            static_cast<unsigned>(markers.iccProfile.size()));
    }
}

} // namespace vellumine::imaging::jpeg
