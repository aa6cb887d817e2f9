import QtQuick
import Vellumine

SettingsChip {
    id: chip

    required property SettingsPresenter settings

    helpText: qsTr("Change compression quality")
    menu: settings.usesQuality ? presets : lossless
    systemName: settings.qualitySymbol
    text: settings.qualityText

    // The component may reach what is around it, which cannot be said to qmllint before Qt 6.5.
    // qmllint disable unqualified
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
