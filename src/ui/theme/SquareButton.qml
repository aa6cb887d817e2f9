import QtQuick
import Vellumine

// A symbol in an outlined square of 30 by 30; what the row buttons have in common.
KestrovaButton {
    id: button

    property string symbol
    required property color tone
    property color symbolColor: KestrovaTheme.cream
    property real restingOpacity: 0.16
    property real pressedOpacity: 0.42

    implicitHeight: 30
    implicitWidth: 30
    opacity: enabled ? 1 : 0.5

    background: Rectangle {
        border.color: KestrovaTheme.faded(button.tone, button.hovered ? 0.75 : 0.5)
        border.width: 1
        color: KestrovaTheme.faded(button.tone, button.down ? button.pressedOpacity : button.restingOpacity)
        radius: 7

        FocusRing {
            radius: 9
            shown: button.visualFocus
        }
    }
    contentItem: Item {
        SymbolImage {
            anchors.centerIn: parent
            color: button.symbolColor
            name: button.symbol
            size: 16
        }
    }
}
