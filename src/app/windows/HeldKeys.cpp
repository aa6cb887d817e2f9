#include "app/windows/HeldKeys.h"

#include <QGuiApplication>
#include <QInputMethodQueryEvent>

namespace vellumine {
namespace {

bool isTextEntered()
{
    QObject* const focus = QGuiApplication::focusObject();
    if (focus == nullptr) {
        return false;
    }
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QCoreApplication::sendEvent(focus, &query);
    return query.value(Qt::ImEnabled).toBool();
}

/// Whether pressing it answers, opens or switches something.
bool activates(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return true;
    case Qt::Key_Space:
        return !isTextEntered();
    default:
        return false;
    }
}

} // namespace

/// X has a repeated key released and pressed in the same moment, which Qt sees where nothing comes
/// in between; and something does where the key opens or closes a dialog.
bool HeldKeys::isRepetition(const QKeyEvent& event) const
{
    return event.isAutoRepeat()
        || (event.type() == QEvent::KeyPress && event.key() == m_released
            && event.timestamp() == m_releaseTime && m_releaseTime != 0);
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.type() == QEvent::KeyRelease) {
            m_released = key.key();
            m_releaseTime = key.timestamp();
        }
        if (isRepetition(key) && activates(key.key())) {
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vellumine
