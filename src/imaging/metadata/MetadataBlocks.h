#pragma once

#include "imaging/Bytes.h"

namespace vellumine::imaging {

/// A picture's metadata as the standards serialise it, without the containers' own headers. An
/// empty block is an absent one.
struct MetadataBlocks {
    ByteBuffer exif; ///< a TIFF structure, starting with "II*" or "MM*" (no "Exif\0\0" in front)
    ByteBuffer xmp; ///< an XMP packet, UTF-8
    ByteBuffer iptc; ///< IPTC-IIM datasets, starting with 0x1C

    [[nodiscard]] bool empty() const { return exif.empty() && xmp.empty() && iptc.empty(); }

    friend bool operator==(const MetadataBlocks&, const MetadataBlocks&) = default;
};

} // namespace vellumine::imaging
