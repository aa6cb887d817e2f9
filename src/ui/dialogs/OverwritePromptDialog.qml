import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Vellumine

// Asks whether a file may be replaced. Only the answers end it; Escape is "Skip".
KestrovaDialog {
    id: dialog

    required property OverwritePromptPresenter prompt

    closePolicy: T.Popup.NoAutoClose
    objectName: "overwritePrompt"
    title: prompt.message
    visible: prompt.isAsking

    contentItem: GridLayout {
        columnSpacing: 14
        columns: 2
        rowSpacing: 4

        Keys.onEscapePressed: dialog.prompt.skip()

        SymbolImage {
            Layout.alignment: Qt.AlignTop
            Layout.rowSpan: 2
            color: KestrovaTheme.copperBright
            name: "exclamationmark.triangle.fill"
            size: 36
        }

        Text {
            Layout.fillWidth: true
            Layout.maximumWidth: 340
            color: KestrovaTheme.cream
            font: TextStyle.headline
            horizontalAlignment: Text.AlignLeft
            maximumLineCount: 4
            elide: Text.ElideRight
            objectName: "promptMessage"
            text: dialog.prompt.message
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
        }

        Text {
            Layout.fillWidth: true
            Layout.maximumWidth: 340
            color: KestrovaTheme.creamMuted
            font: TextStyle.subheadline
            horizontalAlignment: Text.AlignLeft
            objectName: "promptText"
            text: dialog.prompt.informativeText
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.alignment: Qt.AlignRight
            Layout.columnSpan: 2
            Layout.topMargin: 14
            spacing: 10

            DialogButton {
                focus: true
                objectName: "replaceButton"
                prominent: true
                text: dialog.prompt.replaceTitle

                onClicked: dialog.prompt.replace()
            }

            DialogButton {
                objectName: "skipButton"
                text: dialog.prompt.skipTitle

                onClicked: dialog.prompt.skip()
            }
        }
    }
}
