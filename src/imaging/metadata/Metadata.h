#pragma once

#include "imaging/Geometry.h"
#include "imaging/Orientation.h"
#include "imaging/metadata/MetadataBlocks.h"

#include <optional>

namespace vellumine::imaging::metadata {

/// The groups that one EXIF or IPTC block can hold.
struct Groups {
    bool exif = false; ///< the Exif directory
    bool gps = false; ///< the GPS directory
    bool tiff = false; ///< camera, date, artist and the like, from the first directory
    bool iptc = false;
    bool xmp = false;

    friend bool operator==(const Groups&, const Groups&) = default;
};

/// The orientation of the main picture. EXIF holds; without EXIF's, XMP's tiff:Orientation counts.
/// None when there is none, when it is outside 1 to 8 or when the block is damaged.
[[nodiscard]] std::optional<Orientation> orientation(const MetadataBlocks& blocks);

/// Which groups the blocks hold. A damaged block holds nothing.
[[nodiscard]] Groups groups(const MetadataBlocks& blocks);

/// The blocks of a TIFF file: what its directories say about the picture beyond its structure.
/// A file that cannot be read has none.
[[nodiscard]] MetadataBlocks readTiff(ByteSpan file);

/// An encoded TIFF file with the blocks written into its directories; the file as it was when
/// that is not possible.
[[nodiscard]] ByteBuffer writeTiff(ByteBuffer file, const MetadataBlocks& blocks);

/// The blocks as they may travel with a picture that has been turned upright to `size`: only the
/// `kept` groups, no orientation in any of them (the thumbnail's included), pixel dimensions that
/// are true, and no thumbnail when the picture was turned (`turned`), since it would lie on its
/// side. Nothing that describes the old file's structure stays. A damaged block is left out.
[[nodiscard]] MetadataBlocks travelling(
    const MetadataBlocks& blocks, const Groups& kept, Size size, bool turned);

} // namespace vellumine::imaging::metadata
