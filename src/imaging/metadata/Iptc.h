#pragma once

#include "imaging/Bytes.h"

namespace vellumine::imaging::metadata {

/// The part of an IPTC-IIM block that is whole: its datasets up to the first that is damaged, cut
/// off or no dataset at all (containers fill the end with zeros). Empty when there is none.
[[nodiscard]] ByteSpan soundIptc(ByteSpan block);

} // namespace vellumine::imaging::metadata
