import QtQml
import Qt.labs.platform as Platform
import Vellumine

// The application menu in the menu bar of a desktop that has one for all programs. What it says and does is what the given
// menu of the window says and does.
Platform.MenuBar {
    id: bar

    required property ApplicationMenu menu

    Platform.Menu {
        id: exported

        title: ProductInfo.name

        Instantiator {
            model: bar.menu.count

            // What is around it cannot be said to qmllint before Qt 6.5.
            // qmllint disable unqualified
            delegate: Platform.MenuItem {
                required property int index
                readonly property KestrovaMenuItem entry: bar.menu.itemAt(index) as KestrovaMenuItem

                separator: !entry
                shortcut: ShortcutTexts.portable(entry?.shortcutText ?? "")
                text: entry?.text ?? ""

                onTriggered: entry.triggered()
            }

            // qmllint enable unqualified

            onObjectAdded: (index, item) => exported.insertItem(index, item)
        }
    }
}
