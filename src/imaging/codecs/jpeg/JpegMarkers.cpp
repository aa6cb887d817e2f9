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

ByteSpan contentOf(const jpeg_marker_struct& marker)
{
    return std::as_bytes(std::span(marker.data, marker.data_length));
}

ByteBuffer toBuffer(ByteSpan bytes)
{
    return { bytes.begin(), bytes.end() };
}

} // namespace

void keepMarkers(jpeg_decompress_struct& library)
{
    for (const int marker : { exifAndXmpMarker, iccMarker, photoshopMarker }) {
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

OutgoingMarkers outgoingMarkers(ByteSpan profile, const MetadataBlocks& blocks)
{
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
    if (profile.size() <= maximumIccProfile) {
        markers.iccProfile = toBuffer(profile);
    }
    return markers;
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
