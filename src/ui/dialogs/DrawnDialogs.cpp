#include "ui/dialogs/DrawnDialogs.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>

namespace vellumine {
namespace {

QQuickItem* found(QQuickItem* item, const QString& objectName)
{
    if (item->objectName() == objectName) {
        return item;
    }
    const QList<QQuickItem*> children = item->childItems();
    for (QQuickItem* child : children) {
        if (QQuickItem* const match = found(child, objectName)) {
            return match;
        }
    }
    return nullptr;
}

} // namespace

QQuickItem* DrawnDialogs::item(const QString& objectName)
{
    const QWindowList windows = QGuiApplication::allWindows();
    for (QWindow* window : windows) {
        auto* const quick = qobject_cast<QQuickWindow*>(window);
        if (quick == nullptr || !quick->isVisible()) {
            continue;
        }
        if (QQuickItem* const match = found(quick->contentItem(), objectName)) {
            QQmlEngine::setObjectOwnership(match, QQmlEngine::CppOwnership);
            return match;
        }
    }
    return nullptr;
}

} // namespace vellumine
