#include "ui/drop/DropTarget.h"

#include "ui/drop/DroppedUrls.h"

#include <QDragEnterEvent>
#include <QMimeData>

namespace vellumine {
namespace {

/// The files stay where they are, whatever the file manager proposes.
void acceptCopy(QDropEvent& event)
{
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

DropTarget::DropTarget(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemAcceptsDrops);
}

void DropTarget::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData() == nullptr || fileUrls(*event->mimeData()).isEmpty()) {
        event->ignore();
        return;
    }
    acceptCopy(*event);
    setTargeted(true);
}

void DropTarget::dragMoveEvent(QDragMoveEvent* event)
{
    acceptCopy(*event);
}

void DropTarget::dragLeaveEvent(QDragLeaveEvent* event)
{
    setTargeted(false);
    event->accept();
}

void DropTarget::dropEvent(QDropEvent* event)
{
    setTargeted(false);
    const QList<QUrl> urls = fileUrls(*event->mimeData());
    acceptCopy(*event);
    Q_EMIT dropped(urls);
}

void DropTarget::itemChange(ItemChange change, const ItemChangeData& value)
{
    // a hidden or disabled item hears of no leaving
    if ((change == ItemVisibleHasChanged || change == ItemEnabledHasChanged) && !value.boolValue) {
        setTargeted(false);
    }
    QQuickItem::itemChange(change, value);
}

void DropTarget::setTargeted(bool isTargeted)
{
    if (isTargeted != m_isTargeted) {
        m_isTargeted = isTargeted;
        Q_EMIT isTargetedChanged();
    }
}

} // namespace vellumine
