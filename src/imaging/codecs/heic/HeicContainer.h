#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"

namespace vellumine::imaging::heic {

/// Refuses the containers that must not reach the library: those with pictures coded as AV1 (none
/// of our types, and its decoders print and leak on broken files), with Unsupported; and those
/// whose pictures are made of each other in a circle, in a long chain or in numbers that multiply
/// (it would follow them until its stack or everybody's patience ends), with Malformed. Says
/// nothing about anything else.
Result<void> checkContainer(ByteSpan file);

} // namespace vellumine::imaging::heic
