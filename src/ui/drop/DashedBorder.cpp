#include "ui/drop/DashedBorder.h"

#include <QPainter>
#include <QPen>

namespace vellumine {

DashedBorder::DashedBorder(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &DashedBorder::changed, this, [this] { update(); });
}

void DashedBorder::paint(QPainter* painter)
{
    QPen pen(m_color, m_lineWidth, Qt::CustomDashLine, Qt::FlatCap);
    // a pen counts its dashes in line widths
    pen.setDashPattern({ m_dashLength / m_lineWidth, m_gapLength / m_lineWidth });
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    const qreal inset = m_lineWidth / 2;
    painter->drawRoundedRect(
        boundingRect().adjusted(inset, inset, -inset, -inset), m_radius - inset, m_radius - inset);
}

} // namespace vellumine
