#pragma once

#include "imaging/codecs/Codec.h"

#include <span>

namespace vellumine::imaging {

/// Every format of the service, in the order in which contents are sniffed.
[[nodiscard]] std::span<const Codec> codecTable();

/// The codec for a content, null when it is of no known type.
[[nodiscard]] const Codec* codecForContent(ByteSpan file);

/// The codec of a type; every type has one.
[[nodiscard]] const Codec& codecForType(UniformType type);

} // namespace vellumine::imaging
