#pragma once

#include <QRect>

namespace vellumine {

// Lengths are device independent.

/// Whether enough of the window's upper edge lies on the available part of a screen to move it by.
[[nodiscard]] bool canBeGrasped(const QRect& available, const QRect& frame);

/// The frame moved by as little as possible so that all of it lies on the available part of a
/// screen, or its upper left corner where it is larger.
[[nodiscard]] QRect movedInto(const QRect& available, const QRect& frame);

} // namespace vellumine
