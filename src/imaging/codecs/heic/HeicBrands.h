#pragma once

#include "imaging/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vellumine::imaging::heic {

/// What a file's first box says that the file is.
enum class Container : std::uint8_t {
    heic, ///< the major brand is one of HEVC pictures
    heif, ///< the major brand is one of HEIF in general, and the file is not for AV1 only
};

/// By the major brand of a sound `ftyp` box; none for anything else.
[[nodiscard]] std::optional<Container> containerOf(ByteSpan file);

/// Makes an encoded file, which names HEIF among its compatible brands, a HEIF file by its major
/// brand. The file must start with an `ftyp` box.
void makeHeif(std::span<std::byte> file);

} // namespace vellumine::imaging::heic
