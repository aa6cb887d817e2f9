import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change output destination")
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
