import QtQuick
import Vellumine

// A small round button of the title bar.
KestrovaButton {
    id: button

    required property string symbol
    property color hoverColor: KestrovaTheme.faded(KestrovaTheme.cream, 0.16)
    property color pressedColor: KestrovaTheme.faded(KestrovaTheme.cream, 0.28)

    helpText: text
    implicitHeight: 26
    implicitWidth: 26

    background: Rectangle {
        color: button.down ? button.pressedColor : button.hovered ? button.hoverColor : "transparent"
        radius: height / 2

        FocusRing {
            gap: 0
            radius: height / 2
            shown: button.visualFocus
        }
    }
    contentItem: Item {
        SymbolImage {
            anchors.centerIn: parent
            color: button.hovered || button.down ? KestrovaTheme.cream : KestrovaTheme.creamSubtle
            name: button.symbol
            size: 14
        }
    }
}
