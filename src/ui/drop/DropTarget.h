#pragma once

#include <QList>
#include <QQuickItem>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace vellumine {

/// The area that files are dropped on. Takes drags that carry file URLs, and no others.
class DropTarget : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// A drag that would be taken hovers over the area.
    Q_PROPERTY(bool isTargeted READ isTargeted NOTIFY isTargetedChanged)

public:
    explicit DropTarget(QQuickItem* parent = nullptr);

    [[nodiscard]] bool isTargeted() const { return m_isTargeted; }

Q_SIGNALS:
    void isTargetedChanged();
    /// The file URLs of a drop, in its order.
    void dropped(const QList<QUrl>& urls);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void setTargeted(bool isTargeted);

    bool m_isTargeted = false;
};

} // namespace vellumine
