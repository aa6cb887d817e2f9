#pragma once

#include <cstddef>
#include <memory>

namespace vellumine::imaging {

using PixelMemory = std::shared_ptr<std::byte[]>;

/// Memory for so many bytes of pixels, at least one, not initialised and aligned to a cache line;
/// null when there is none. It may be given back by any thread. From a megabyte on it comes out of
/// the calling thread's PixelArena where that has room, and in huge pages where the system has
/// them.
[[nodiscard]] PixelMemory allocatePixels(std::size_t bytes);

} // namespace vellumine::imaging
