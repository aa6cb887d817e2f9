#pragma once

#include <QList>
#include <QUrl>

#include <functional>

namespace vellumine {

/// What happens to drags over the status item, apart from any window: which ones it takes, when it
/// lights up, and what it hands on.
class StatusItemDrops {
public:
    /// Takes the accepted items of one drop.
    using Process = std::function<void(const QList<QUrl>& urls)>;

    StatusItemDrops(Process process, std::function<void()> highlightChanged);

    /// An acceptable drag hovers over the item.
    [[nodiscard]] bool isHighlighted() const { return m_isHighlighted; }

    /// Whether the drag may be dropped, as a copy. One that may not leaves the highlight as it is.
    bool draggingEntered(const QList<QUrl>& urls);
    void draggingExited();
    /// Hands the accepted items on, if there are any, and says whether there were. The highlight
    /// ends in any case.
    bool performDrop(const QList<QUrl>& urls);

private:
    void setHighlighted(bool on);

    Process m_process;
    std::function<void()> m_highlightChanged;
    bool m_isHighlighted = false;
};

} // namespace vellumine
