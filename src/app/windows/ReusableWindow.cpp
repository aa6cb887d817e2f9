#include "app/windows/ReusableWindow.h"

#include "app/windows/FrameOnScreen.h"
#include "app/windows/ScreenFilling.h"
#include "app/windows/WindowActivation.h"
#include "app/windows/WindowHeight.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
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

/// The screen where it was may be gone, or smaller.
QRect withinReach(const QRect& frame, const QRect& available)
{
    const auto screens = QGuiApplication::screens();
    const bool isWithin = std::ranges::any_of(screens, [&frame](const QScreen* screen) {
        return canBeGrasped(screen->availableGeometry(), frame);
    });
    return isWithin ? frame : movedInto(available, frame);
}

/// Window managers announce the frame of a window that fills the screen before or after they say
/// that it does.
bool mayBeAboutToFillScreen(const QWindow& window)
{
    return window.size() == window.screen()->availableSize()
        || window.size() == window.screen()->size();
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
    } else if (!m_window->isVisible()) {
        placeAgain();
    }
    bringToFront(*m_window, token);
}

/// A window manager places a window that is shown again as if it was new, unless told. One that is
/// to fill the screen tells with its frame what it can be restored to; one that has grown
/// meanwhile, as it does with its results, is to be seen as a whole.
void ReusableWindow::placeAgain()
{
    if (!m_frame) {
        return;
    }
    const QRect available = m_window->screen()->availableGeometry();
    if (fillsScreen(*m_window)) {
        m_window->setGeometry(withinReach(*m_frame, available));
        return;
    }
    const QRect frame = withinReach({ m_frame->topLeft(), m_window->size() }, available);
    const bool hasGrown = frame.height() > m_frame->height();
    m_window->setPosition((hasGrown ? movedUpInto(available, frame) : frame).topLeft());
}

bool ReusableWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window.get() && m_window->visibility() == QWindow::Windowed) {
        const bool isNew = event->type() == QEvent::Move || event->type() == QEvent::Resize;
        if (event->type() == QEvent::Close || (isNew && !mayBeAboutToFillScreen(*m_window))) {
            m_frame = m_window->geometry();
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vellumine
