#pragma once

#include <QRect>

#include <optional>

namespace vellumine {

// How the main window grows with its results. Lengths are device independent.

inline constexpr int emptyWindowHeight = 440;
/// The most rows that the list shows without scrolling.
inline constexpr qsizetype visibleRows = 8;

/// The height that shows that many results: 440 for none, else 574 and 76 for each of the first
/// eight rows.
[[nodiscard]] int targetHeight(qsizetype resultCount);

/// The frame moved up by as much as it must so as not to reach below the available part of its
/// screen, but never above that.
[[nodiscard]] QRect movedUpInto(const QRect& available, const QRect& frame);

/// Where the window goes for that many results: its top edge and width stay. It is never higher
/// than the available part of its screen, and where it would reach below that, it moves up by as
/// much as it must. None where its height is right already, within one point.
[[nodiscard]] std::optional<QRect> frameForResults(
    const QRect& frame, qsizetype resultCount, const QRect& available);

} // namespace vellumine
