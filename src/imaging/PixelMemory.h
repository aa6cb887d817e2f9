#pragma once

#include <cstddef>
#include <memory>

namespace vellumine::imaging {

using PixelMemory = std::shared_ptr<std::byte[]>;

/// Memory for so many bytes of pixels, at least one, not initialised and aligned to a cache line;
/// null when there is none.
/// Large pictures get huge pages where the system has them: a 24-megapixel picture is otherwise
/// 17,000 page faults. A thread gets the large ones that it gave back again.
[[nodiscard]] PixelMemory allocatePixels(std::size_t bytes);

} // namespace vellumine::imaging
