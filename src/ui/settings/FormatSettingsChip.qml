import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change output format")
    // The component may reach what is around it, which cannot be said to qmllint before Qt 6.5.
    // qmllint disable unqualified
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
