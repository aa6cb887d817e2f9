#include "app/windows/WindowGround.h"

#include "app/x11/XcbConnection.h"

#include <QPlatformSurfaceEvent>
#include <QWindow>

namespace vellumine {

WindowGround::WindowGround(QColor color, QObject* parent)
    : QObject(parent)
    , m_color(color)
{
}

bool WindowGround::eventFilter(QObject* watched, QEvent* event)
{
    // A window that was closed has another surface when it is shown again.
    if (event->type() == QEvent::PlatformSurface && xcb::connection() && !xcb::isComposited()
        && static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType()
            == QPlatformSurfaceEvent::SurfaceCreated) {
        // Its visuals have eight bits a colour, and alpha above them where they have it.
        const auto id = static_cast<xcb::Window>(static_cast<QWindow*>(watched)->winId());
        xcb::setGround(id, m_color.rgba());
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vellumine
