#pragma once

#include "imaging/Geometry.h"
#include "imaging/Orientation.h"
#include "imaging/metadata/MetadataBlocks.h"
#include "imaging/metadata/Resolution.h"

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

/// What the picture that the blocks are written with is like, seen from the one they came with.
struct NewPicture {
    Size size;
    /// It was turned upright from a stored orientation other than TopLeft.
    bool wasTurned = false;
    /// Its numbers are sRGB numbers (ColorSpace::isSRgbEquivalent).
    bool isSRgb = false;
    /// Turning it has exchanged its sides.
    bool hasSidesSwapped = false;
};

/// The orientation of the main picture. EXIF holds; without EXIF's, XMP's tiff:Orientation counts.
/// None when there is none, when it is outside 1 to 8 or when the block is damaged.
[[nodiscard]] std::optional<Orientation> orientation(const MetadataBlocks& blocks);

/// Whether an EXIF block, or a TIFF file, says that its numbers are Adobe RGB (1998) numbers, as
/// cameras do without a profile: a colour space that is not calibrated by Exif, with the index of
/// DCF's option files (DCF 2.0, "R03") beside it. A damaged block says nothing.
[[nodiscard]] bool saysAdobeRgb(ByteSpan exif);

/// EXIF's resolution of the main picture; none when it is missing or senseless, or when the block
/// is damaged.
[[nodiscard]] std::optional<Resolution> resolution(const MetadataBlocks& blocks);

/// The EXIF block with the resolution in it, unless it says one already. An empty block becomes
/// one that says nothing else.
[[nodiscard]] ByteBuffer withResolution(ByteBuffer exif, const Resolution& resolution);

/// Which groups the blocks hold. A damaged block holds nothing.
[[nodiscard]] Groups groups(const MetadataBlocks& blocks);

/// The blocks of a TIFF file: what its directories say about the picture beyond its structure,
/// the orientation included. A file that cannot be read has none.
[[nodiscard]] MetadataBlocks readTiff(ByteSpan file);

/// An encoded TIFF file with the blocks written into its directories; the file as it was when
/// that is not possible.
[[nodiscard]] ByteBuffer writeTiff(ByteBuffer file, const MetadataBlocks& blocks);

/// The blocks as they may travel with the new picture: only the `kept` groups, no orientation in
/// any of them (the thumbnail's included), pixel dimensions and colour space that are true, the two
/// numbers of the resolution exchanged with the picture's sides, and no thumbnail when the picture
/// was turned, since it would lie on its side. Nothing that describes
/// the old file's structure stays. Maker notes stay, at their place where they can. A damaged
/// block is left out; of a block with damaged parts, the sound ones travel.
[[nodiscard]] MetadataBlocks travelling(
    const MetadataBlocks& blocks, const Groups& kept, const NewPicture& picture);

} // namespace vellumine::imaging::metadata
