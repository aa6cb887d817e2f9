#pragma once

namespace vellumine::imaging {

/// How much a picture may cost that is drawn in another size.
enum class InterpolationQuality { none, low, medium, high };

} // namespace vellumine::imaging
