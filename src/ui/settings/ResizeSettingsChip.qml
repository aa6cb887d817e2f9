import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change resize settings")
    menu: KestrovaMenu {
        MenuTitle {
            text: qsTr("Resize Mode")
        }

        Repeater {
            model: chip.settings.resizeModeTitles

            KestrovaMenuItem {
                required property int index
                required property string modelData

                checkable: true
                checked: chip.settings.resizeMode === index
                text: modelData

                onTriggered: chip.settings.resizeMode = index
            }
        }

        KestrovaMenuSeparator {}

        Repeater {
            model: chip.settings.pixelPresets

            KestrovaMenuItem {
                required property int modelData

                text: chip.settings.pixelPresetTitle(modelData)

                onTriggered: chip.settings.choosePixelPreset(modelData)
            }
        }
    }
    systemName: settings.resizeSymbol
    text: settings.resizeText
}
