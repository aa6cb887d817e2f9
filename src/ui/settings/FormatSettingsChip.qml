import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change output format")
    menu: KestrovaMenu {
        MenuTitle {
            text: qsTr("Format")
        }

        Repeater {
            model: chip.settings.outputFormatTitles

            KestrovaMenuItem {
                required property int index
                required property string modelData

                checkable: true
                checked: chip.settings.outputFormat === index
                text: modelData

                onTriggered: chip.settings.outputFormat = index
            }
        }
    }
    systemName: settings.formatSymbol
    text: settings.formatText
}
