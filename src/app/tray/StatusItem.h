#pragma once

#include "app/tray/NotifierHost.h"
#include "app/tray/StatusItemDrops.h"
#include "app/tray/StatusMenu.h"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>

#include <memory>

class QMenu;
class QSystemTrayIcon;

namespace vellumine {

class DropStatusItemView;

/// The status-bar item, in the best form that the desktop has: our own view in an X11 tray, which
/// takes drops; else a StatusNotifier item, which takes none; else nothing. Changes its form as
/// trays come and go. Both forms have the same menu.
class StatusItem final : public QObject {
    Q_OBJECT

public:
    StatusItem(StatusMenuActions actions, StatusItemDrops::Process process, QDBusConnection bus,
        QObject* parent = nullptr);
    ~StatusItem() override;

private:
    void chooseForm();
    void showNotifier();
    void showMenu(const QPoint& position);

    StatusMenuActions m_actions;
    NotifierHost m_host;
    std::unique_ptr<DropStatusItemView> m_view; ///< on X11 only
    std::unique_ptr<QMenu> m_menu; ///< the one that was opened last
    std::unique_ptr<QMenu> m_notifierMenu; ///< handed to the host; outlives the notifier
    std::unique_ptr<QSystemTrayIcon> m_notifier;
};

} // namespace vellumine
