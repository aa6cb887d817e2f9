#include "app/windows/FrameOnScreen.h"

#include "app/windows/WindowHeight.h"

#include <algorithm>

namespace vellumine {

bool canBeGrasped(const QRect& available, const QRect& frame)
{
    constexpr int barHeight = 28;
    constexpr int enoughHeight = 14;
    constexpr int enoughWidth = 120;
    const QRect bar = QRect(frame.topLeft(), QSize(frame.width(), barHeight)) & available;
    return bar.height() >= enoughHeight && bar.width() >= std::min(enoughWidth, frame.width());
}

QRect movedInto(const QRect& available, const QRect& frame)
{
    QRect moved = movedUpInto(available, frame);
    const int rightmost = available.x() + available.width() - frame.width();
    moved.moveLeft(std::max(std::min(frame.x(), rightmost), available.x()));
    return moved;
}

} // namespace vellumine
