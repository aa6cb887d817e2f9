#pragma once

#include <QColor>
#include <QRect>

class QPainter;

namespace vellumine {

/// How the status item is drawn.
struct StatusItemArt {
    static constexpr int imageSize = 18;
    static constexpr int highlightInset = 2;

    QColor tint; ///< of the template image
    QColor background; ///< invalid where the tray shines through
    bool isHighlighted = false;

    /// The colour that lies under the image while an acceptable drag hovers.
    [[nodiscard]] static QColor highlightColor();
    /// The image's square: centred, smaller where there is less room.
    [[nodiscard]] static QRectF imageRect(const QRectF& bounds);
    /// A tint that stands out from the panel.
    [[nodiscard]] static QColor tintOn(const QColor& panel);
    /// One that can be seen on light panels and on dark ones, for those that do not tell.
    [[nodiscard]] static QColor tintOnAnyPanel();

    /// Fills the bounds. Lengths are device independent; the scale is the painter's.
    void paint(QPainter& painter, const QRectF& bounds) const;
};

} // namespace vellumine
