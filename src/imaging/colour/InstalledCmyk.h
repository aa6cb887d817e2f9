#pragma once

#include "imaging/Bytes.h"

namespace vellumine::imaging::colour {

/// The CMYK profile that this machine has for pictures without one of their own: the first of the
/// usual press and proofing profiles that the distributions install. Empty when there is none. Read
/// once and kept.
[[nodiscard]] ByteSpan installedCmykProfile();

} // namespace vellumine::imaging::colour
