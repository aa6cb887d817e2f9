#include "app/tray/StatusItem.h"

#include "app/tray/DropStatusItemView.h"
#include "core/Product.h"
#include "ui/theme/SymbolImage.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

#include <utility>

namespace vellumine {
namespace {

QIcon notifierIcon()
{
    QIcon icon;
    for (const int pixels : { 16, 22, 24, 32, 48 }) {
        const QImage image = SymbolImage::render(
            QStringLiteral("photo.on.rectangle.angled"), StatusItemArt::tintOnAnyPanel(), pixels);
        if (!image.isNull()) {
            icon.addPixmap(QPixmap::fromImage(image));
        }
    }
    return icon;
}

} // namespace

StatusItem::StatusItem(StatusMenuActions actions, StatusItemDrops::Process process,
    QDBusConnection bus, QObject* parent)
    : QObject(parent)
    , m_actions(std::move(actions))
    , m_host(std::move(bus))
{
    connect(&m_host, &NotifierHost::isPresentChanged, this, &StatusItem::chooseForm);
    if (DropStatusItemView::isPossible()) {
        m_view = std::make_unique<DropStatusItemView>(std::move(process));
        connect(m_view.get(), &DropStatusItemView::dockingSettled, this, &StatusItem::chooseForm);
        connect(m_view.get(), &DropStatusItemView::menuRequested, this, &StatusItem::showMenu);
    }
}

StatusItem::~StatusItem() = default;

void StatusItem::chooseForm()
{
    const bool isDocked = m_view && m_view->isDocked();
    if (!isDocked && m_host.isPresent()) {
        showNotifier();
    } else {
        m_notifier.reset();
        m_notifierMenu.reset();
    }
}

void StatusItem::showNotifier()
{
    if (m_notifier) {
        return;
    }
    m_notifierMenu = makeStatusMenu(m_actions);
    m_notifier = std::make_unique<QSystemTrayIcon>(notifierIcon());
    m_notifier->setToolTip(QString(product::name));
    m_notifier->setContextMenu(m_notifierMenu.get());
    connect(m_notifier.get(), &QSystemTrayIcon::activated, this,
        [this](QSystemTrayIcon::ActivationReason reason) {
            // The host shows the menu on a right click; a left click reaches us.
            if (reason != QSystemTrayIcon::Trigger) {
                return;
            }
            if (DropStatusItemView::isPossible()) {
                showMenu(QCursor::pos());
            } else {
                // Without X11 nobody may open a menu over another program's panel.
                m_actions.openWindow();
            }
        });
    m_notifier->show();
}

void StatusItem::showMenu(const QPoint& position)
{
    m_menu = makeStatusMenu(m_actions);
    m_menu->popup(position);
}

} // namespace vellumine
