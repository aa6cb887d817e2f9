#pragma once

#include "app/instance/ActivationToken.h"

#include <cstdint>
#include <optional>

class QWindow;

namespace vellumine {

/// Shows the window, in front of all others and with the keyboard, as far as the desktop allows it:
/// the token says that the user asked for it.
void bringToFront(QWindow& window, const ActivationToken& token);

/// When the user's action was that a startup id stands for, in the X server's milliseconds: the
/// number behind its last "_TIME".
[[nodiscard]] std::optional<std::uint32_t> timeOfStartup(const QByteArray& startupId);

} // namespace vellumine
