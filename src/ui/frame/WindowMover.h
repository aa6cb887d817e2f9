#pragma once

#include <QPointF>
#include <QQuickItem>
#include <qqmlregistration.h>

namespace vellumine {

/// The background of a window without a frame: dragging it moves the window. Only what lies over it
/// and takes presses itself does not.
class WindowMover : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

public:
    /// How far the pointer has to go before it is a drag and no click, in device independent
    /// pixels.
    static constexpr qreal threshold = 6;

    explicit WindowMover(QQuickItem* parent = nullptr);

Q_SIGNALS:
    /// The window manager has been asked to take over.
    void moveStarted();
    void doubleClicked(const QPointF& position);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QPointF m_pressed;
    bool m_isArmed = false;
};

} // namespace vellumine
