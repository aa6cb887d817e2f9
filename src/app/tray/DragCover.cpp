#include "app/tray/DragCover.h"

#include "app/tray/DropStatusItemView.h"

#include <QEvent>
#include <QPainter>

namespace vellumine {

DragCover::DragCover(DropStatusItemView& item)
    : m_item(item)
{
    setFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint
        | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
}

bool DragCover::event(QEvent* event)
{
    if (m_item.handleDrag(event)) {
        update();
        return true;
    }
    return QRasterWindow::event(event);
}

void DragCover::mousePressEvent(QMouseEvent* event)
{
    m_item.mousePressEvent(event);
}

void DragCover::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    m_item.art(false).paint(painter, QRectF(QPointF(), QSizeF(size())));
}

} // namespace vellumine
