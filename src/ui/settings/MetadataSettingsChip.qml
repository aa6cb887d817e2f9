import QtQuick
import Vellumine

SettingsChip {
    required property SettingsPresenter settings

    helpText: qsTr("Toggle metadata removal")
    systemName: settings.metadataSymbol
    text: settings.metadataText

    onClicked: settings.removeMetadata = !settings.removeMetadata
}
