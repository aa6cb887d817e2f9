#include "ui/frame/WindowEdges.h"

#include <QQuickWindow>

namespace vellumine {

WindowEdges::WindowEdges(QQuickItem* parent)
    : QQuickItem(parent)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
}

Qt::Edges WindowEdges::edgesAt(const QPointF& position, const QSizeF& size)
{
    const auto edgesWithin = [&](qreal horizontally, qreal vertically) {
        Qt::Edges edges;
        edges.setFlag(Qt::LeftEdge, position.x() < horizontally);
        edges.setFlag(Qt::RightEdge, position.x() >= size.width() - horizontally);
        edges.setFlag(Qt::TopEdge, position.y() < vertically);
        edges.setFlag(Qt::BottomEdge, position.y() >= size.height() - vertically);
        return edges;
    };
    if (!QRectF(QPointF(), size).contains(position) || !edgesWithin(edgeWidth, edgeWidth)) {
        return {};
    }
    // At the rim; near its end it is the corner that one means.
    const Qt::Edges horizontal = edgesWithin(cornerLength, 0);
    const Qt::Edges vertical = edgesWithin(0, cornerLength);
    if (horizontal && vertical) {
        return horizontal | vertical;
    }
    return edgesWithin(edgeWidth, edgeWidth);
}

Qt::CursorShape WindowEdges::cursorFor(Qt::Edges edges)
{
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge)) {
        return Qt::SizeFDiagCursor;
    }
    if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge)) {
        return Qt::SizeBDiagCursor;
    }
    if (edges & (Qt::LeftEdge | Qt::RightEdge)) {
        return Qt::SizeHorCursor;
    }
    return edges ? Qt::SizeVerCursor : Qt::ArrowCursor;
}

bool WindowEdges::contains(const QPointF& position) const
{
    return isEnabled() && edgesAt(position, size()) != Qt::Edges();
}

void WindowEdges::hoverMoveEvent(QHoverEvent* event)
{
    setCursor(cursorFor(edgesAt(event->position(), size())));
}

void WindowEdges::mousePressEvent(QMouseEvent* event)
{
    const Qt::Edges edges = edgesAt(event->position(), size());
    window()->startSystemResize(edges);
    Q_EMIT resizeStarted(edges);
}

} // namespace vellumine
