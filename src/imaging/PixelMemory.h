#pragma once

#include <cstddef>
#include <memory>

namespace vellumine::imaging {

using PixelMemory = std::shared_ptr<std::byte[]>;

/// Pixels start at multiples of this, and so do the rows of what is worked on in between: a cache
/// line, and what the widest vectors want.
inline constexpr std::size_t pixelAlignment = 64;

/// The next such multiple: the length of a row behind which another one starts.
[[nodiscard]] constexpr std::size_t alignedUp(std::size_t bytes)
{
    return (bytes + pixelAlignment - 1) / pixelAlignment * pixelAlignment;
}

/// Memory for so many bytes of pixels, at least one, not initialised and aligned;
/// null when there is none. It may be given back by any thread. From a megabyte on it comes out of
/// the calling thread's PixelArena where that has room, and in huge pages where the system has
/// them.
[[nodiscard]] PixelMemory allocatePixels(std::size_t bytes);

} // namespace vellumine::imaging
