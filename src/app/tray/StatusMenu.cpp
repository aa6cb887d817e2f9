#include "app/tray/StatusMenu.h"

#include "ui/theme/Palette.h"

#include <QCoreApplication>
#include <QKeySequence>

namespace vellumine {
namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(StatusMenu)
};

QString styleSheet()
{
    // Widgets do not know our theme; this is the menus' look of the windows.
    return QStringLiteral("QMenu { background: %1; color: %2; border: 1px solid %3; padding: 6px; }"
                          "QMenu::item { padding: 5px 26px 5px 10px; border-radius: 6px; }"
                          "QMenu::item:selected { background: %4; }"
                          "QMenu::separator { height: 1px; background: %3; margin: 5px 4px; }")
        .arg(palette::leatherDeep.toQColor().name(), palette::cream.toQColor().name(),
            palette::leatherRaised.toQColor().name(), palette::copper.toQColor().name());
}

} // namespace

std::unique_ptr<QMenu> makeStatusMenu(const StatusMenuActions& actions)
{
    auto menu = std::make_unique<QMenu>();
    menu->setStyleSheet(styleSheet());
    menu->addAction(Translated::tr("Open Drop Window"), menu.get(), actions.openWindow);
    menu->addAction(Translated::tr("Preferences..."), menu.get(), actions.openPreferences);
    menu->addAction(Translated::tr("Kestrova Website"), menu.get(), actions.openWebsite);
    menu->addSeparator();
    QAction* quit = menu->addAction(Translated::tr("Quit Vellumine"), menu.get(), actions.quit);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setShortcutVisibleInContextMenu(true);
    return menu;
}

} // namespace vellumine
