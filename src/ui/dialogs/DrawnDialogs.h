#pragma once

#include <QObject>
#include <QQuickItem>
#include <QString>
#include <qqmlregistration.h>

namespace vellumine {

/// The dialogs that Qt draws where the desktop has none of its own: over the window that opens
/// them, or, in its newer versions, in windows of their own.
class DrawnDialogs : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// The first item of that object name in any window that is shown, or null.
    Q_INVOKABLE [[nodiscard]] static QQuickItem* item(const QString& objectName);
};

} // namespace vellumine
