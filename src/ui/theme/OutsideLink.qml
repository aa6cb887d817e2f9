import QtQuick
import Vellumine

// Opens a page in the browser: a text, and the arrow that says that it leads outside.
PlainButton {
    id: link

    required property url address
    property string symbol

    Accessible.role: Accessible.Link
    font: TextStyle.subheadline

    contentItem: Row {
        spacing: 5

        SymbolImage {
            anchors.verticalCenter: parent.verticalCenter
            color: KestrovaTheme.copperBright
            name: link.symbol
            size: 14
            visible: link.symbol.length > 0
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            color: link.hovered ? KestrovaTheme.cream : KestrovaTheme.creamMuted
            font: link.font
            text: link.text
        }

        SymbolImage {
            anchors.verticalCenter: parent.verticalCenter
            color: link.hovered ? KestrovaTheme.cream : KestrovaTheme.creamSubtle
            name: "arrow.up.right"
            objectName: "arrow"
            size: 10
        }
    }

    onClicked: Qt.openUrlExternally(address)
}
