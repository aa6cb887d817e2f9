#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace vellumine::imaging {

/// Read-only view of a file's or a block's bytes; whoever hands it out keeps them alive.
using ByteSpan = std::span<const std::byte>;

/// Owned bytes of an encoded file or of a metadata block.
using ByteBuffer = std::vector<std::byte>;

} // namespace vellumine::imaging
