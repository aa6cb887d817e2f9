#include "app/tray/StatusItemArt.h"

#include "ui/theme/SymbolImage.h"

#include <QPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vellumine {

QColor StatusItemArt::highlightColor()
{
    return QColor::fromRgbF(0.788F, 0.576F, 0.451F, 0.32F);
}

QRectF StatusItemArt::imageRect(const QRectF& bounds)
{
    const qreal size = std::min({ qreal { imageSize }, bounds.width(), bounds.height() });
    return { bounds.x() + (bounds.width() - size) / 2, bounds.y() + (bounds.height() - size) / 2,
        size, size };
}

QColor StatusItemArt::tintOn(const QColor& panel)
{
    // Half way between black and white for the eye, which is darker than half in numbers.
    return qGray(panel.rgb()) < 140 ? QColor(0xf2, 0xef, 0xea) : QColor(0x26, 0x22, 0x1f);
}

QColor StatusItemArt::tintOnAnyPanel()
{
    return { 0xa8, 0x6e, 0x55 }; // copper, as bright as lies between black and white for the eye
}

void StatusItemArt::paint(QPainter& painter, const QRectF& bounds) const
{
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(bounds, background.isValid() ? background : QColor(Qt::transparent));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (isHighlighted) {
        painter.fillRect(
            bounds.adjusted(highlightInset, highlightInset, -highlightInset, -highlightInset),
            highlightColor());
    }
    const QRectF rect = imageRect(bounds);
    const qreal scale = painter.device()->devicePixelRatioF();
    const QImage image = SymbolImage::render(QStringLiteral("photo.on.rectangle.angled"), tint,
        static_cast<int>(std::lround(rect.width() * scale)));
    if (!image.isNull()) {
        painter.drawImage(rect, image);
    }
}

} // namespace vellumine
