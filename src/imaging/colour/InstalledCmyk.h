#pragma once

#include "imaging/Bytes.h"

namespace vellumine::imaging::colour {

/// The CMYK profile that this machine has for pictures without one of their own: the first of the
/// usual press and proofing profiles that the distributions install. Empty when there is none. Read
/// once and kept.
[[nodiscard]] ByteSpan installedCmykProfile();

/// Opens the files of which installedCmykProfile() will read one, for a process that is about to
/// give up opening files. They are read when the profile is first asked for, and closed then: most
/// processes never see ink.
void openInstalledCmykProfiles();

} // namespace vellumine::imaging::colour
