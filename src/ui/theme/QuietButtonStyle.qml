import QtQuick
import Vellumine

// A button that keeps in the background: a symbol, a text or both. On light cards set `light`.
KestrovaButton {
    id: button

    property string symbol
    property bool light: false
    readonly property color labelColor: light ? KestrovaTheme.copperStrong : KestrovaTheme.cream
    readonly property real fillOpacity: down ? 0.3 : hovered ? 0.2 : 0.12

    font.pixelSize: 13
    font.weight: Font.DemiBold
    bottomPadding: 7
    leftPadding: 10
    opacity: enabled ? 1 : 0.5
    rightPadding: 10
    topPadding: 7

    background: Rectangle {
        color: KestrovaTheme.faded(button.light ? KestrovaTheme.copperStrong : KestrovaTheme.cream, button.fillOpacity)
        radius: 8

        Behavior on color {
            ColorAnimation {
                duration: Motion.quick
            }
        }

        FocusRing {
            radius: 10
            shown: button.visualFocus
        }
    }
    contentItem: Row {
        spacing: 6

        SymbolImage {
            anchors.verticalCenter: parent.verticalCenter
            color: button.labelColor
            name: button.symbol
            size: 16
            visible: button.symbol.length > 0
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            color: button.labelColor
            font: button.font
            text: button.text
            visible: button.text.length > 0
        }
    }
}
