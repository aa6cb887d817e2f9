#pragma once

#include "imaging/Bytes.h"
#include "imaging/metadata/FileTexts.h"

namespace vellumine::imaging::gif {

/// The comments of a file, before, between and behind its pictures: up to where it ends, or makes
/// no sense.
[[nodiscard]] FileTexts commentsOf(ByteSpan file);

} // namespace vellumine::imaging::gif
