import QtQuick
import Vellumine

// A button that ends a dialog. The prominent one is the proposed answer.
KestrovaButton {
    id: button

    property bool prominent: false
    readonly property color fill: prominent ? KestrovaTheme.copper : KestrovaTheme.faded(KestrovaTheme.cream, 0.14)

    Accessible.defaultButton: prominent
    font: TextStyle.headline
    implicitHeight: 32
    implicitWidth: Math.max(92, implicitContentWidth + leftPadding + rightPadding)
    leftPadding: 16
    rightPadding: 16

    background: Rectangle {
        color: button.down ? Qt.darker(button.fill, 1.2) : button.hovered ? Qt.lighter(button.fill, 1.1) : button.fill
        radius: 8

        FocusRing {
            radius: 10
            shown: button.visualFocus
        }
    }
    contentItem: Text {
        color: KestrovaTheme.cream
        font: button.font
        horizontalAlignment: Text.AlignHCenter
        text: button.text
        verticalAlignment: Text.AlignVCenter
    }
}
