#pragma once

#include "imaging/Orientation.h"
#include "imaging/metadata/Metadata.h"

#include <optional>

namespace vellumine::imaging::metadata {

/// Whether the packet can be read.
[[nodiscard]] bool isSoundXmp(ByteSpan packet);

/// tiff:Orientation; none when it is missing, outside 1 to 8 or in a damaged packet.
[[nodiscard]] std::optional<Orientation> xmpOrientation(ByteSpan packet);

/// The packet made true for the new picture, as `travelling` promises; one in which nothing has
/// to change keeps its text and loses its padding. Empty when it is damaged or nothing is left.
[[nodiscard]] ByteBuffer travellingXmp(ByteSpan packet, const NewPicture& picture);

} // namespace vellumine::imaging::metadata
