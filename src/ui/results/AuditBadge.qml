import QtQuick
import Vellumine

// A small tag: a symbol and what it stands for.
Rectangle {
    id: badge

    required property string systemName
    required property string text
    readonly property real minimumWidth: symbol.width + 2 * 5

    border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.1)
    border.width: 1
    color: KestrovaTheme.faded(KestrovaTheme.cream, 0.07)
    implicitHeight: label.implicitHeight + 2 * 2
    implicitWidth: Math.ceil(symbol.width + 3 + label.implicitWidth + 2 * 5)
    radius: 5

    SymbolImage {
        id: symbol

        anchors.left: parent.left
        anchors.leftMargin: 5
        anchors.verticalCenter: parent.verticalCenter
        color: KestrovaTheme.creamMuted
        name: badge.systemName
        size: 10
    }

    Text {
        id: label

        anchors.left: symbol.right
        anchors.leftMargin: 3
        anchors.right: parent.right
        anchors.rightMargin: 5
        anchors.verticalCenter: parent.verticalCenter
        color: KestrovaTheme.creamMuted
        elide: Text.ElideRight
        font.pixelSize: 9
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignLeft
        text: badge.text
        textFormat: Text.PlainText
    }
}
