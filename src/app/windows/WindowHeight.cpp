#include "app/windows/WindowHeight.h"

#include <algorithm>
#include <cstdlib>

namespace vellumine {

int targetHeight(qsizetype resultCount)
{
    if (resultCount < 1) {
        return emptyWindowHeight;
    }
    return 574 + 76 * static_cast<int>(std::min(resultCount, visibleRows));
}

QRect movedUpInto(const QRect& available, const QRect& frame)
{
    const int lowestTop = available.y() + available.height() - frame.height();
    const int top = std::max(std::min(frame.y(), lowestTop), available.y());
    return { frame.x(), top, frame.width(), frame.height() };
}

std::optional<QRect> frameForResults(
    const QRect& frame, qsizetype resultCount, const QRect& available)
{
    const int height = std::min(targetHeight(resultCount), available.height());
    if (std::abs(frame.height() - height) <= 1) {
        return std::nullopt;
    }
    return movedUpInto(available, { frame.x(), frame.y(), frame.width(), height });
}

} // namespace vellumine
