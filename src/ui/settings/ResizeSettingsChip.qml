import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change resize settings")
    // The component may reach what is around it, which cannot be said to qmllint before Qt 6.5.
    // qmllint disable unqualified
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
