#include "app/windows/HeldKeys.h"

#include <QGuiApplication>
#include <QInputMethodQueryEvent>
#include <QKeyEvent>

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

bool HeldKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.isAutoRepeat() && activates(key.key())) {
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vellumine
