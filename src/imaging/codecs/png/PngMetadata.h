#pragma once

#include "imaging/Bytes.h"
#include "imaging/metadata/MetadataBlocks.h"

namespace vellumine::imaging::png {

/// EXIF, XMP and IPTC of the file's chunks, wherever they stand: eXIf, the XMP text, and the
/// "Raw profile type" texts that came before those.
[[nodiscard]] MetadataBlocks metadataOf(ByteSpan file);

/// Appends the chunks that hold the blocks.
void appendMetadata(ByteBuffer& file, const MetadataBlocks& blocks);

} // namespace vellumine::imaging::png
