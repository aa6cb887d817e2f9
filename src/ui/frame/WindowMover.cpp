#include "ui/frame/WindowMover.h"

#include <QQuickWindow>

namespace vellumine {

WindowMover::WindowMover(QQuickItem* parent)
    : QQuickItem(parent)
{
    setAcceptedMouseButtons(Qt::LeftButton);
}

void WindowMover::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->globalPosition();
    m_isArmed = true;
}

void WindowMover::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_isArmed || (event->globalPosition() - m_pressed).manhattanLength() < threshold) {
        return;
    }
    // Once per press: the window manager swallows the release, and whoever starts again on the
    // next motion leaves the window sticking to the pointer.
    m_isArmed = false;
    window()->startSystemMove();
    Q_EMIT moveStarted();
}

void WindowMover::mouseReleaseEvent(QMouseEvent* event)
{
    m_isArmed = false;
    event->accept();
}

void WindowMover::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_isArmed = false;
    Q_EMIT doubleClicked(event->position());
}

} // namespace vellumine
