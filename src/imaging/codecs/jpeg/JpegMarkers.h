#pragma once

#include "imaging/Bytes.h"
#include "imaging/codecs/Codec.h"

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace vellumine::imaging::jpeg {

/// Asks the library to keep the segments that the functions below read. To be called inside
/// Errors::run, before the header is read.
void keepMarkers(jpeg_decompress_struct& library);

/// The ICC profile that the kept segments hold; empty when a piece is missing or contradicts the
/// others.
[[nodiscard]] ByteBuffer iccProfile(const jpeg_decompress_struct& library);

/// The EXIF block alone, which lives as long as the library keeps the segments.
[[nodiscard]] ByteSpan exif(const jpeg_decompress_struct& library);

/// EXIF, XMP (without its extension) and IPTC of the kept segments.
[[nodiscard]] MetadataBlocks metadata(const jpeg_decompress_struct& library);

/// The segments to write into a file, ready for the library.
struct OutgoingMarkers {
    struct Segment {
        int marker;
        ByteBuffer data;
    };
    std::vector<Segment> segments;
    ByteBuffer iccProfile;
};

/// What of the profile and the blocks fits: a block lives in one segment, a profile in 255.
[[nodiscard]] OutgoingMarkers outgoingMarkers(ByteSpan profile, const MetadataBlocks& blocks);

/// Writes them. To be called inside Errors::run, after jpeg_start_compress.
void writeMarkers(jpeg_compress_struct& library, const OutgoingMarkers& markers);

} // namespace vellumine::imaging::jpeg
