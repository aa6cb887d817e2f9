#pragma once

#include "app/tray/StatusItemArt.h"
#include "app/tray/StatusItemDrops.h"
#include "app/tray/XcbTray.h"

#include <QAbstractNativeEventFilter>
#include <QRasterWindow>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace vellumine {

class DragCover;

/// The status item as a window of our own in an X11 tray, docked by the system tray protocol, since
/// no other kind of item takes drops. Docks when a tray appears, and again when it restarts. A tray
/// that only shows a picture of it somewhere is left again: see `isDocked`.
class DropStatusItemView final : public QRasterWindow, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    static constexpr int preferredWidth = 30;

    /// Whether this desktop can have such an item at all.
    [[nodiscard]] static bool isPossible();

    /// Docks as soon as there is a tray. Drops are handed to `process`.
    explicit DropStatusItemView(StatusItemDrops::Process process);
    ~DropStatusItemView() override;

    /// Visible in a tray, where drops arrive.
    [[nodiscard]] bool isDocked() const { return m_isDocked; }

Q_SIGNALS:
    /// The answer to "is it in a tray" is known, again or anew.
    void dockingSettled();
    /// A click with any button, at that place of the screen.
    void menuRequested(const QPoint& position);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

private:
    friend class DragCover;

    [[nodiscard]] bool handleDrag(QEvent* event);
    [[nodiscard]] StatusItemArt art(bool isTransparent) const;

    void handle(const xcb_generic_event_t& event);
    void dock();
    void undock();
    void embeddedIn(xcb::Window parent);
    void lookAtPanel();
    void settle(bool isDocked);
    void coverDuringDrag();
    void uncoverAfterDrag();

    xcb::Atoms m_atoms = xcb::atoms();
    std::optional<std::uint8_t> m_dragEvent;
    StatusItemDrops m_drops;
    std::unique_ptr<DragCover> m_cover; ///< over the item while somebody drags
    QTimer m_dragWatch;
    QTimer m_panelWatch; ///< until the panel has drawn itself around the item
    QTimer m_toolTipDelay;
    xcb::Window m_tray = xcb::noWindow;
    xcb::Window m_window = xcb::noWindow; ///< ours, while it is or wants to be docked
    QColor m_panel; ///< its colour around the item
    bool m_isDocked = false;
};

} // namespace vellumine
