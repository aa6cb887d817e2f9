import QtQuick
import Vellumine

SettingsChip {
    required property SettingsPresenter settings

    helpText: qsTr("Toggle color optimization")
    systemName: settings.colorSymbol
    text: settings.colorText

    onClicked: settings.optimizeColorForSharing = !settings.optimizeColorForSharing
}
