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

/// The comments of the kept segments.
[[nodiscard]] FileTexts comments(const jpeg_decompress_struct& library);

/// What the JFIF header says; none without one, or where it only says that pixels are square.
[[nodiscard]] std::optional<Resolution> resolution(const jpeg_decompress_struct& library);

/// The segments to write into a file, ready for the library.
struct OutgoingMarkers {
    struct Segment {
        int marker;
        ByteBuffer data;
    };
    std::vector<Segment> segments;
    ByteBuffer iccProfile;
    std::optional<Resolution> resolution; ///< for the JFIF header
};

/// What of the profile, the blocks and the comments fits: a block or a comment lives in one
/// segment, a profile in 255.
[[nodiscard]] OutgoingMarkers outgoingMarkers(ByteSpan profile, const EncodeOptions& options);

/// Has the library say the resolution in the JFIF header, where that can. To be called inside
/// Errors::run, when the colours of the file are set.
void setResolution(jpeg_compress_struct& library, const OutgoingMarkers& markers);

/// Writes them. To be called inside Errors::run, after jpeg_start_compress.
void writeMarkers(jpeg_compress_struct& library, const OutgoingMarkers& markers);

} // namespace vellumine::imaging::jpeg
