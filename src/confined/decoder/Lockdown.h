#pragma once

#include "confined/protocol/Confinement.h"

namespace vellumine::confined {

/// Gives up, for good, every right of this process that decoding does not take. What the system
/// does not have is left out, and not in the result. What limits memory and time is the parent's
/// business. To be called before there is a second thread.
[[nodiscard]] Confinement lockDown();

/// Forbids to open, make or change anything in the file system, to reach the network and to signal
/// other processes. Gives the version of what forbids it, 0 for nothing.
[[nodiscard]] int raiseLandlock();

/// Lets only those system calls through that decoding takes. Gives whether that is in force.
[[nodiscard]] bool installSystemCallFilter();

} // namespace vellumine::confined
