#include "app/tray/StatusItemDrops.h"

#include "app/tray/DraggedItems.h"

#include <utility>

namespace vellumine {

StatusItemDrops::StatusItemDrops(Process process, std::function<void()> highlightChanged)
    : m_process(std::move(process))
    , m_highlightChanged(std::move(highlightChanged))
{
}

bool StatusItemDrops::draggingEntered(const QList<QUrl>& urls)
{
    if (!hasAcceptedItem(urls)) {
        return false;
    }
    setHighlighted(true);
    return true;
}

void StatusItemDrops::draggingExited()
{
    setHighlighted(false);
}

bool StatusItemDrops::performDrop(const QList<QUrl>& urls)
{
    setHighlighted(false);
    const QList<QUrl> accepted = acceptedItems(urls);
    if (accepted.isEmpty()) {
        return false;
    }
    m_process(accepted);
    return true;
}

void StatusItemDrops::setHighlighted(bool on)
{
    m_isHighlighted = on;
    m_highlightChanged();
}

} // namespace vellumine
