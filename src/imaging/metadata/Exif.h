#pragma once

#include "imaging/Orientation.h"
#include "imaging/metadata/Metadata.h"
#include "imaging/metadata/Resolution.h"
#include "imaging/metadata/TiffTree.h"

#include <optional>

namespace vellumine::imaging::metadata {

/// The first directory's orientation; none when it is missing or outside 1 to 8.
[[nodiscard]] std::optional<Orientation> exifOrientation(const TiffTree& tree);

/// Whether the colour space is "uncalibrated" and the interoperability index "R03".
[[nodiscard]] bool exifSaysAdobeRgb(const TiffTree& tree);

/// The first directory's resolution; none when a number is missing or out of range, or the unit is
/// unknown. Without a unit the numbers are pixels an inch (TIFF 6.0, section 8).
[[nodiscard]] std::optional<Resolution> exifResolution(const TiffTree& tree);

/// Puts the resolution into the first directory.
void setExifResolution(TiffTree& tree, const Resolution& resolution);

/// The groups of `Groups` that the directories hold: exif, gps and tiff. Orientation and what
/// describes a file's structure make no group.
[[nodiscard]] Groups exifGroups(const TiffTree& tree);

/// Takes from the directories what describes the structure of the file they stand in. The
/// thumbnail's structure is its own and stays.
void dropStructure(TiffTree& tree);

/// Makes the directories true for the new picture, as `travelling` promises.
void adjustToPicture(TiffTree& tree, const Groups& kept, const NewPicture& picture);

} // namespace vellumine::imaging::metadata
