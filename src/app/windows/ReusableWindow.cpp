#include "app/windows/ReusableWindow.h"

#include "app/windows/WindowActivation.h"

#include <QEvent>
#include <QScreen>

#include <utility>

namespace vellumine {
namespace {

/// In the middle of the screen, and no larger than it, whatever the window would like.
void center(QWindow& window)
{
    const QRect available = window.screen()->availableGeometry();
    window.setMinimumSize(window.minimumSize().boundedTo(available.size()));
    QRect frame(QPoint(), window.size().boundedTo(available.size()));
    frame.moveCenter(available.center());
    window.setGeometry(frame);
}

} // namespace

ReusableWindow::ReusableWindow(Make make, QObject* parent)
    : QObject(parent)
    , m_make(std::move(make))
{
}

ReusableWindow::~ReusableWindow() = default;

void ReusableWindow::show(const ActivationToken& token)
{
    if (!m_window) {
        m_window = m_make();
        if (!m_window) {
            return;
        }
        m_window->installEventFilter(this);
        center(*m_window);
        Q_EMIT made(m_window.get());
    } else if (!m_window->isVisible() && m_position) {
        // A window manager places a window that is shown again as if it was new, unless told.
        m_window->setPosition(*m_position);
    }
    bringToFront(*m_window, token);
}

bool ReusableWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window.get() && event->type() == QEvent::Close
        && m_window->visibility() == QWindow::Windowed) {
        m_position = m_window->position();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vellumine
