#pragma once

#include <cstddef>
#include <memory>

namespace vellumine::imaging {

/// Memory for so many bytes of pixels, at least one, not initialised; null when there is none.
/// Large pictures get huge pages where the system has them: a 24-megapixel picture is otherwise
/// 17,000 page faults.
///
/// A program has one definition: the service's own, which is linked where there is no other. One
/// that hands its pictures to another process has them made in memory that can be handed over.
[[nodiscard]] std::shared_ptr<std::byte[]> allocatePixels(std::size_t bytes);

} // namespace vellumine::imaging
