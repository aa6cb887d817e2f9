#include "app/windows/FrameOnScreen.h"

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
    const auto within = [](int position, int length, int first, int room) {
        return std::max(std::min(position, first + room - length), first);
    };
    return { within(frame.x(), frame.width(), available.x(), available.width()),
        within(frame.y(), frame.height(), available.y(), available.height()), frame.width(),
        frame.height() };
}

} // namespace vellumine
