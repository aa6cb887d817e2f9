#include "app/tray/DropStatusItemView.h"

#include "app/tray/DragCover.h"
#include "app/tray/DraggedItems.h"
#include "core/Product.h"
#include "ui/theme/Palette.h"

#include <QCursor>
#include <QDragMoveEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <QToolTip>

#include <xcb/xfixes.h>

#include <chrono>

namespace vellumine {
namespace {

using namespace std::chrono_literals;

/// A tray that has just taken its place is not ready for items at once.
constexpr auto trayStart = 200ms;
/// What a tray does to an item that it took in, such as hiding it, comes after the taking.
constexpr auto embeddingTime = 150ms;
/// A panel that has moved its items draws itself anew.
constexpr auto panelDrawingTime = 150ms;
constexpr auto toolTipDelay = 700ms;
constexpr auto dragCheck = 150ms;
/// The drop itself arrives after the button was let go.
constexpr auto dropTime = 400ms;

/// The panel's colour beside the item, whose place is in the pixels of the screen.
QColor panelColorAt(QRect item, const QScreen* screen)
{
    if (!screen) {
        return Qt::black;
    }
    const QPointF beside
        = QPointF(std::max(0, item.left() - 1), item.center().y()) / screen->devicePixelRatio();
    const QPixmap pixel = const_cast<QScreen*>(screen)->grabWindow(
        0, static_cast<int>(beside.x()), static_cast<int>(beside.y()), 1, 1);
    return pixel.isNull() ? QColor(Qt::black) : pixel.toImage().pixelColor(0, 0);
}

void showToolTip()
{
    QPalette look;
    look.setColor(QPalette::ToolTipBase, palette::leatherDeep.toQColor());
    look.setColor(QPalette::ToolTipText, palette::cream.toQColor());
    QToolTip::setPalette(look);
    QToolTip::showText(QCursor::pos(), QString(product::name));
}

} // namespace

bool DropStatusItemView::isPossible()
{
    return xcb::connection() != nullptr;
}

DropStatusItemView::DropStatusItemView(StatusItemDrops::Process process)
    : m_drops(std::move(process), [this] {
        update();
        if (m_cover) {
            m_cover->update();
        }
    })
{
    setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint);
    setTitle(QGuiApplication::applicationDisplayName());
    // Some trays read it from the size hints; most decide themselves.
    setMinimumSize({ preferredWidth, StatusItemArt::imageSize + 4 });
    resize(minimumSize());
    m_dragWatch.setInterval(dragCheck);
    connect(&m_dragWatch, &QTimer::timeout, this, &DropStatusItemView::uncoverAfterDrag);
    m_panelWatch.setSingleShot(true);
    m_panelWatch.setInterval(panelDrawingTime);
    connect(&m_panelWatch, &QTimer::timeout, this, &DropStatusItemView::lookAtPanel);
    m_toolTipDelay.setSingleShot(true);
    m_toolTipDelay.setInterval(toolTipDelay);
    connect(&m_toolTipDelay, &QTimer::timeout, this, showToolTip);

    qGuiApp->installNativeEventFilter(this);
    xcb::listenToStructure(xcb::rootWindow()); // where a starting tray announces itself
    m_dragEvent = xcb::listenToDrags(m_atoms);
    QTimer::singleShot(0, this, &DropStatusItemView::dock);
}

DropStatusItemView::~DropStatusItemView()
{
    qGuiApp->removeNativeEventFilter(this);
}

void DropStatusItemView::dock()
{
    m_tray = xcb::trayOwner(m_atoms);
    if (m_tray == xcb::noWindow) {
        settle(false);
        return;
    }
    QSurfaceFormat wanted = format();
    wanted.setAlphaBufferSize(xcb::trayWantsAlpha(m_atoms, m_tray) ? 8 : 0);
    destroy(); // a window that a tray has left in pieces docks nowhere else
    setFormat(wanted);
    create();
    m_window = static_cast<xcb::Window>(winId());
    xcb::listenToStructure(m_tray);
    xcb::requestDock(m_atoms, m_tray, m_window);
}

void DropStatusItemView::undock()
{
    m_window = xcb::noWindow;
    hide();
    destroy();
    settle(false);
}

void DropStatusItemView::embeddedIn(xcb::Window parent)
{
    if (parent == xcb::rootWindow()) {
        undock(); // the tray let it go; when it starts again it says so
        return;
    }
    if (xcb::isInvisiblyEmbedded(m_atoms, m_window)) {
        undock();
        return;
    }
    lookAtPanel();
    show();
    m_panelWatch.start();
    settle(true);
}

void DropStatusItemView::lookAtPanel()
{
    const auto place = m_window == xcb::noWindow ? std::nullopt : xcb::screenGeometry(m_window);
    if (place) {
        m_panel = panelColorAt(*place, screen());
        update();
    }
}

void DropStatusItemView::settle(bool isDocked)
{
    m_isDocked = isDocked;
    Q_EMIT dockingSettled();
}

bool DropStatusItemView::nativeEventFilter(
    const QByteArray& type, void* message, qintptr* /*result*/)
{
    if (type == "xcb_generic_event_t") {
        handle(*static_cast<const xcb_generic_event_t*>(message));
    }
    return false;
}

// What follows from an event is done after it: Qt has to see the event first.
void DropStatusItemView::handle(const xcb_generic_event_t& event)
{
    const auto kind = static_cast<std::uint8_t>(event.response_type & 0x7fU);
    if (m_dragEvent && kind == *m_dragEvent) {
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        if (change.selection == m_atoms.dragSelection && change.owner != xcb::noWindow) {
            QTimer::singleShot(0, this, &DropStatusItemView::coverDuringDrag);
        }
    } else if (kind == XCB_CLIENT_MESSAGE) {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.type == m_atoms.manager && message.data.data32[1] == m_atoms.trayOwner) {
            QTimer::singleShot(trayStart, this, &DropStatusItemView::dock);
        }
    } else if (kind == XCB_DESTROY_NOTIFY) {
        const auto& end = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        if (m_tray != xcb::noWindow && end.window == m_tray) {
            m_tray = xcb::noWindow;
            QTimer::singleShot(0, this, &DropStatusItemView::undock);
        }
    } else if (kind == XCB_REPARENT_NOTIFY) {
        const auto& move = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
        if (m_window != xcb::noWindow && move.window == m_window) {
            QTimer::singleShot(
                embeddingTime, this, [this, window = m_window, parent = move.parent] {
                    if (m_window == window) {
                        embeddedIn(parent);
                    }
                });
        }
    }
}

void DropStatusItemView::coverDuringDrag()
{
    const auto place = m_isDocked ? xcb::screenGeometry(m_window) : std::nullopt;
    if (!place) {
        return;
    }
    if (!m_cover) {
        m_cover = std::make_unique<DragCover>(*this);
    }
    const qreal scale = devicePixelRatio();
    m_cover->setGeometry(
        QRectF(QPointF(place->topLeft()) / scale, QSizeF(place->size()) / scale).toAlignedRect());
    m_cover->show();
    m_cover->raise();
    m_dragWatch.start();
}

void DropStatusItemView::uncoverAfterDrag()
{
    if (xcb::isButtonDown()) {
        return;
    }
    m_dragWatch.stop();
    QTimer::singleShot(dropTime, this, [this] {
        if (m_cover && !m_dragWatch.isActive()) {
            m_cover->hide();
            m_drops.draggingExited();
        }
    });
}

StatusItemArt DropStatusItemView::art(bool isTransparent) const
{
    return {
        .tint = StatusItemArt::tintOn(m_panel),
        .background = isTransparent ? QColor() : m_panel,
        .isHighlighted = m_drops.isHighlighted(),
    };
}

void DropStatusItemView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const bool isTransparent = format().alphaBufferSize() > 0 && xcb::isComposited();
    art(isTransparent).paint(painter, QRectF(QPointF(), QSizeF(size())));
}

void DropStatusItemView::moveEvent(QMoveEvent* /*event*/)
{
    m_panelWatch.start();
}

void DropStatusItemView::resizeEvent(QResizeEvent* event)
{
    QRasterWindow::resizeEvent(event);
    m_panelWatch.start();
}

void DropStatusItemView::mousePressEvent(QMouseEvent* event)
{
    m_toolTipDelay.stop();
    QToolTip::hideText();
    Q_EMIT menuRequested(event->globalPosition().toPoint());
}

bool DropStatusItemView::event(QEvent* event)
{
    if (event->type() == QEvent::Enter) {
        lookAtPanel(); // its theme may have changed
        m_toolTipDelay.start();
    } else if (event->type() == QEvent::Leave) {
        m_toolTipDelay.stop();
        QToolTip::hideText();
    }
    return handleDrag(event) || QRasterWindow::event(event);
}

bool DropStatusItemView::handleDrag(QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter: {
        auto& drag = static_cast<QDragEnterEvent&>(*event);
        const bool isCopyable = drag.possibleActions().testFlag(Qt::CopyAction);
        drag.setAccepted(isCopyable && m_drops.draggingEntered(draggedUrls(*drag.mimeData())));
        drag.setDropAction(drag.isAccepted() ? Qt::CopyAction : Qt::IgnoreAction);
        return true;
    }
    case QEvent::DragMove: {
        // Sent along with every step; what was decided on entering holds.
        auto& drag = static_cast<QDragMoveEvent&>(*event);
        drag.setAccepted(m_drops.isHighlighted());
        drag.setDropAction(drag.isAccepted() ? Qt::CopyAction : Qt::IgnoreAction);
        return true;
    }
    case QEvent::DragLeave:
        m_drops.draggingExited();
        return true;
    case QEvent::Drop: {
        auto& drop = static_cast<QDropEvent&>(*event);
        drop.setDropAction(Qt::CopyAction);
        drop.setAccepted(m_drops.performDrop(draggedUrls(*drop.mimeData())));
        return true;
    }
    default:
        return false;
    }
}

} // namespace vellumine
