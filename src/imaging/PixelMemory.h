#pragma once

#include <cstddef>
#include <memory>

namespace vellumine::imaging {

/// Memory for so many bytes of pixels, at least one, not initialised; null when there is none.
/// Large pictures get huge pages where the system has them: a 24-megapixel picture is otherwise
/// 17,000 page faults.
[[nodiscard]] std::shared_ptr<std::byte[]> allocatePixels(std::size_t bytes);

} // namespace vellumine::imaging
