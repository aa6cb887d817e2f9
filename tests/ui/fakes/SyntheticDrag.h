#pragma once

#include <QMimeData>
#include <QObject>
#include <QQuickItem>
#include <QStringList>
#include <qqmlregistration.h>

#include <memory>

namespace vellumine {

/// Drags over a window the way a platform would: the same events, sent to the window.
class SyntheticDrag : public QObject {
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;

    /// Enters with a list of URIs, as file managers send them; each is taken byte by byte. Whether
    /// the window takes the drag.
    Q_INVOKABLE bool enterWithUris(QQuickItem* item, qreal x, qreal y, const QStringList& uris);
    /// Enters with plain text and no URL.
    Q_INVOKABLE bool enterWithText(QQuickItem* item, qreal x, qreal y, const QString& text);
    /// Whether the window still takes the drag there.
    Q_INVOKABLE bool move(QQuickItem* item, qreal x, qreal y);
    /// Whether the window took the drop.
    Q_INVOKABLE bool drop(QQuickItem* item, qreal x, qreal y);
    Q_INVOKABLE void leave(QQuickItem* item);

private:
    bool enter(QQuickItem* item, qreal x, qreal y);

    std::unique_ptr<QMimeData> m_data;
};

} // namespace vellumine
