#pragma once

#include "imaging/Bytes.h"
#include "imaging/metadata/MetadataBlocks.h"
#include "imaging/metadata/Resolution.h"

#include <optional>

namespace vellumine::imaging::png {

/// EXIF, XMP and IPTC of the file's chunks, wherever they stand: eXIf, the XMP text, and the
/// "Raw profile type" texts that came before those.
[[nodiscard]] MetadataBlocks metadataOf(ByteSpan file);

/// What the file's pHYs chunk says; none without one, or where it makes no sense.
[[nodiscard]] std::optional<Resolution> resolutionOf(ByteSpan file);

/// Appends a pHYs chunk, where its numbers can say the resolution.
void appendResolution(ByteBuffer& file, const Resolution& resolution);

/// Appends the chunks that hold the blocks.
void appendMetadata(ByteBuffer& file, const MetadataBlocks& blocks);

} // namespace vellumine::imaging::png
