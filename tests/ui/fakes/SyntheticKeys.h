#pragma once

#include <QObject>
#include <QQuickItem>
#include <qqmlregistration.h>

namespace vellumine {

/// Keys the way a platform reports them: the same events, sent to the window.
class SyntheticKeys : public QObject {
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;

    /// Presses a key (Qt::Key), holds it until it has repeated itself that many times, and lets it
    /// go. The item's window has the keyboard.
    Q_INVOKABLE static void hold(QQuickItem* item, int key, int repeats);
};

} // namespace vellumine
