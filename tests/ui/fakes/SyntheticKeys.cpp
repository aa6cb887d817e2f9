#include "ui/fakes/SyntheticKeys.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QQuickWindow>

namespace vellumine {

void SyntheticKeys::hold(QQuickItem* item, int key, int repeats)
{
    const auto send = [item, key](QEvent::Type type, bool repeated) {
        QKeyEvent event(type, key, Qt::NoModifier, {}, repeated);
        QCoreApplication::sendEvent(item->window(), &event);
    };
    send(QEvent::KeyPress, false);
    for (int repeat = 0; repeat < repeats; ++repeat) {
        send(QEvent::KeyRelease, true);
        send(QEvent::KeyPress, true);
    }
    send(QEvent::KeyRelease, false);
}

} // namespace vellumine
