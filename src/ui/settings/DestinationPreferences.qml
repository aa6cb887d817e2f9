import QtQuick
import QtQuick.Layouts
import Vellumine

// Where outputs go and what they are called.
PreferenceSection {
    id: section

    required property SettingsPresenter settings

    title: qsTr("Destination")

    FormRow {
        label: qsTr("Destination")

        KestrovaPicker {
            Accessible.name: qsTr("Destination")
            currentIndex: section.settings.destinationMode
            model: section.settings.destinationModeTitles
            objectName: "destinationPicker"
            light: true

            onActivated: index => section.settings.destinationMode = index
        }
    }

    FormRow {
        label: qsTr("Folder")

        QuietButtonStyle {
            objectName: "folderButton"
            light: true
            symbol: "folder"
            text: section.settings.destinationFolderButtonTitle

            onClicked: section.settings.chooseDestinationFolder()
        }

        Text {
            Layout.fillWidth: true
            color: KestrovaTheme.mutedInk
            elide: Text.ElideMiddle
            font: TextStyle.subheadline
            horizontalAlignment: Text.AlignLeft
            maximumLineCount: 1
            objectName: "folderDescription"
            text: section.settings.destinationFolderDescription
            textFormat: Text.PlainText
        }
    }

    FormRow {
        label: qsTr("Filename")

        KestrovaTextField {
            Layout.fillWidth: true
            objectName: "prefixField"
            light: true
            placeholderText: qsTr("Prefix")
            text: section.settings.filenamePrefix

            onTextEdited: section.settings.filenamePrefix = text
        }

        KestrovaTextField {
            Layout.fillWidth: true
            objectName: "suffixField"
            light: true
            placeholderText: qsTr("Suffix")
            text: section.settings.filenameSuffix

            onTextEdited: section.settings.filenameSuffix = text
        }
    }
}
