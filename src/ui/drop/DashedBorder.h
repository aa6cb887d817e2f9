#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace vellumine {

/// A rounded rectangle stroked inside its edge with a dashed line. Lengths are device independent
/// pixels.
class DashedBorder : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY changed)
    Q_PROPERTY(qreal lineWidth MEMBER m_lineWidth NOTIFY changed)
    Q_PROPERTY(qreal dashLength MEMBER m_dashLength NOTIFY changed)
    Q_PROPERTY(qreal gapLength MEMBER m_gapLength NOTIFY changed)

public:
    explicit DashedBorder(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    QColor m_color;
    qreal m_radius = 0;
    qreal m_lineWidth = 2;
    qreal m_dashLength = 8;
    qreal m_gapLength = 6;
};

} // namespace vellumine
