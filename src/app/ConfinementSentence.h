#pragma once

#include "confined/protocol/Confinement.h"

#include <QString>

#include <optional>

namespace vellumine {

/// What holds the decoding of pictures back, as a sentence in the user's language; without a value,
/// that the decoder is missing.
[[nodiscard]] QString confinementSentence(const std::optional<confined::Confinement>& confinement);

} // namespace vellumine
