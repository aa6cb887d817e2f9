import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change compression quality")
    menu: settings.usesQuality ? presets : lossless
    systemName: settings.qualitySymbol
    text: settings.qualityText

    Component {
        id: presets

        KestrovaMenu {
            Repeater {
                model: chip.settings.qualityPresets

                KestrovaMenuItem {
                    required property int modelData

                    text: chip.settings.qualityPresetTitle(modelData)

                    onTriggered: chip.settings.quality = modelData
                }
            }
        }
    }

    Component {
        id: lossless

        KestrovaMenu {
            KestrovaMenuItem {
                enabled: false
                text: qsTr("Lossless format")
            }
        }
    }
}
