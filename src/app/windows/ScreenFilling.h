#pragma once

#include <QWindow>

namespace vellumine {

/// Whether the window has a whole screen, maximised or without a frame, and its own size only when
/// it is restored.
[[nodiscard]] inline bool fillsScreen(const QWindow& window)
{
    return (window.windowStates() & (Qt::WindowMaximized | Qt::WindowFullScreen)) != 0;
}

} // namespace vellumine
