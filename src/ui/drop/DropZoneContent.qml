import QtQuick
import QtQuick.Layouts
import Vellumine

// A symbol, the line about what goes on, and what can be dropped, in the middle of the drop zone.
Item {
    id: content

    required property ProcessingPresenter processing

    implicitHeight: column.implicitHeight
    implicitWidth: column.implicitWidth

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 14

        SymbolImage {
            Layout.alignment: Qt.AlignHCenter
            color: KestrovaTheme.copper
            name: content.processing.symbol
            objectName: "symbol"
            size: 44
        }

        Text {
            Layout.fillWidth: true
            color: KestrovaTheme.cream
            font: TextStyle.headline
            horizontalAlignment: Text.AlignHCenter
            objectName: "status"
            text: content.processing.statusText
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
        }

        Text {
            Layout.fillWidth: true
            color: KestrovaTheme.creamMuted
            font: TextStyle.subheadline
            horizontalAlignment: Text.AlignHCenter
            objectName: "hint"
            text: content.processing.hintText
            wrapMode: Text.Wrap
        }
    }
}
