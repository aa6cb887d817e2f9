#pragma once

namespace vellumine::confined {

/// The descriptor that a helper finds its end of the channel at.
inline constexpr int helperDescriptor = 3;

} // namespace vellumine::confined
