#pragma once

#include "imaging/Bytes.h"
#include "imaging/Orientation.h"

#include <cstdint>

namespace vellumine::imaging::heic {

/// How an item of the container is stored, by its properties of rotation and mirroring (ISO/IEC
/// 23008-12, `irot` and `imir`), which the library follows without a word. TopLeft for whatever
/// cannot be read.
[[nodiscard]] Orientation storedOrientation(ByteSpan file, std::uint32_t item);

} // namespace vellumine::imaging::heic
