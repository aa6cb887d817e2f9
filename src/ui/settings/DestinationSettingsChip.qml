import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change output destination")
    // The component may reach what is around it, which cannot be said to qmllint before Qt 6.5.
    // qmllint disable unqualified
    menu: KestrovaMenu {
        MenuTitle {
            text: qsTr("Destination")
        }

        Repeater {
            model: chip.settings.destinationModeTitles

            KestrovaMenuItem {
                required property int index
                required property string modelData

                checkable: true
                checked: chip.settings.destinationMode === index
                text: modelData

                onTriggered: chip.settings.destinationMode = index
            }
        }

        KestrovaMenuSeparator {}

        KestrovaMenuItem {
            text: chip.settings.destinationFolderButtonTitle

            onTriggered: chip.settings.chooseAndUseDestinationFolder()
        }
    }
    systemName: settings.destinationSymbol
    text: settings.destinationText
}
