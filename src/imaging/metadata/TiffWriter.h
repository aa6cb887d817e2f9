#pragma once

#include "imaging/metadata/TiffTree.h"

namespace vellumine::imaging::metadata {

/// The tree as an EXIF block of its own. A maker note goes back to the offset that it had, and the
/// rest is laid out around it; bytes between that nobody needs are zero. Empty for an empty tree.
[[nodiscard]] ByteBuffer writeExifBlock(const TiffTree& tree);

/// The classic TIFF file with the tree's directories behind its content. `tree.main` is added to
/// the fields of the file's first directory, which win where both have a tag. The values are
/// brought into the file's byte order. The file as it was when it is no classic TIFF or would grow
/// past what its offsets can say.
[[nodiscard]] ByteBuffer appendToTiffFile(ByteBuffer file, TiffTree tree);

} // namespace vellumine::imaging::metadata
