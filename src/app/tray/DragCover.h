#pragma once

#include <QRasterWindow>

namespace vellumine {

class DropStatusItemView;

/// A window that lies over the status item while something is dragged. Panels that take drops
/// themselves would swallow those that are meant for the item; this one is above them. A click that
/// hits it, just after a drop, is meant for the item as well.
class DragCover final : public QRasterWindow {
public:
    /// The item has to outlive its cover.
    explicit DragCover(DropStatusItemView& item);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    DropStatusItemView& m_item;
};

} // namespace vellumine
