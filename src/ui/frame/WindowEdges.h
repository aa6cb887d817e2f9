#pragma once

#include <QCursor>
#include <QQuickItem>
#include <qqmlregistration.h>

namespace vellumine {

/// The edges and corners of a window without a frame: dragging them resizes it. Lies over the whole
/// window and is not there for the pointer but at the rim.
class WindowEdges : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

public:
    /// Device independent pixels from the rim that belong to it, and along it to a corner.
    static constexpr qreal edgeWidth = 5;
    static constexpr qreal cornerLength = 14;

    explicit WindowEdges(QQuickItem* parent = nullptr);

    /// The edges that a press there would drag, in a window of that size: none, one, or the two of
    /// a corner.
    [[nodiscard]] static Qt::Edges edgesAt(const QPointF& position, const QSizeF& size);
    [[nodiscard]] static Qt::CursorShape cursorFor(Qt::Edges edges);

    [[nodiscard]] bool contains(const QPointF& position) const override;

Q_SIGNALS:
    /// The window manager has been asked to take over.
    void resizeStarted(Qt::Edges edges);

protected:
    void hoverMoveEvent(QHoverEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
};

} // namespace vellumine
