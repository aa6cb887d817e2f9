import QtQuick
import QtQuick.Templates as T
import Vellumine

// A bordered button for what cannot be undone, on a light card.
T.Button {
    id: button

    property string symbol
    readonly property color tone: "#a3271d"

    Accessible.name: text
    Accessible.onPressAction: clicked()
    bottomPadding: 6
    font: TextStyle.body
    hoverEnabled: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: 10
    opacity: enabled ? 1 : 0.5
    rightPadding: 12
    topPadding: 6

    background: Rectangle {
        border.color: KestrovaTheme.faded(button.tone, 0.55)
        color: KestrovaTheme.faded(button.tone, button.down ? 0.22 : button.hovered ? 0.12 : 0.04)
        radius: 7

        FocusRing {
            radius: 9
            shown: button.visualFocus
        }
    }
    contentItem: Row {
        spacing: 6

        SymbolImage {
            anchors.verticalCenter: parent.verticalCenter
            color: button.tone
            name: button.symbol
            size: 14
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            color: button.tone
            font: button.font
            text: button.text
        }
    }
}
