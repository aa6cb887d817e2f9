import QtQuick
import Vellumine

// A symbol, the line about what goes on, and what can be dropped, in the middle of the drop zone. Where there is not room
// for all of them, the line comes first and then what can be dropped.
Item {
    id: content

    required property ProcessingPresenter processing
    readonly property real heightOfTexts: status.implicitHeight + column.spacing + hint.implicitHeight

    implicitHeight: symbol.size + column.spacing + heightOfTexts
    implicitWidth: Math.max(symbol.size, status.implicitWidth, hint.implicitWidth)

    Column {
        id: column

        anchors.verticalCenter: parent.verticalCenter
        spacing: 14
        width: parent.width

        SymbolImage {
            id: symbol

            anchors.horizontalCenter: parent.horizontalCenter
            color: KestrovaTheme.copper
            name: content.processing.symbol
            objectName: "symbol"
            size: 44
            visible: content.implicitHeight <= content.height
        }

        Text {
            id: status

            color: KestrovaTheme.cream
            elide: Text.ElideRight
            font: TextStyle.headline
            height: Math.min(implicitHeight, content.height)
            horizontalAlignment: Text.AlignHCenter
            objectName: "status"
            text: content.processing.statusText
            textFormat: Text.PlainText
            width: column.width
            wrapMode: Text.Wrap
        }

        Text {
            id: hint

            color: KestrovaTheme.creamMuted
            font: TextStyle.subheadline
            horizontalAlignment: Text.AlignHCenter
            objectName: "hint"
            text: content.processing.hintText
            visible: content.heightOfTexts <= content.height
            width: column.width
            wrapMode: Text.Wrap
        }
    }
}
