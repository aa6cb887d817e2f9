#include "ui/frame/WindowBackground.h"

#include "ui/theme/Palette.h"

#include <QLinearGradient>
#include <QPainter>

namespace vellumine {

WindowBackground::WindowBackground(QQuickItem* parent)
    : QQuickPaintedItem(parent)
    , m_startColor(palette::bg.toQColor())
    , m_endColor(palette::bgWarm.toQColor())
{
    setAntialiasing(true);
    connect(this, &WindowBackground::changed, this, [this] { update(); });
}

void WindowBackground::paint(QPainter* painter)
{
    const QRectF area = boundingRect();
    QLinearGradient gradient(m_mirrored ? area.topRight() : area.topLeft(),
        m_mirrored ? area.bottomLeft() : area.bottomRight());
    gradient.setColorAt(0, m_startColor);
    gradient.setColorAt(1, m_endColor);
    painter->setPen(Qt::NoPen);
    painter->setBrush(gradient);
    painter->drawRoundedRect(area, m_radius, m_radius);
}

} // namespace vellumine
