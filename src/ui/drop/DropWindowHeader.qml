import QtQuick
import QtQuick.Layouts
import Vellumine

// The logo, the product's name above the settings, and the way to all preferences.
RowLayout {
    id: header

    required property SettingsPresenter settings

    signal preferencesRequested

    spacing: 12

    KestrovaLogoMark {
        Layout.alignment: Qt.AlignVCenter
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 4

        Text {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            Layout.fillWidth: true
            color: KestrovaTheme.cream
            font: TextStyle.title2
            horizontalAlignment: Text.AlignLeft
            objectName: "title"
            text: ProductInfo.name
        }

        SettingsChipGroup {
            Layout.fillWidth: true
            objectName: "chips"
            settings: header.settings
        }
    }

    QuietButtonStyle {
        Layout.alignment: Qt.AlignVCenter
        helpText: qsTr("Preferences")
        objectName: "preferencesButton"
        symbol: "gearshape"

        onClicked: header.preferencesRequested()
    }
}
