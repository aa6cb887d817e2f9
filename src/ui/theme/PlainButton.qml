import QtQuick
import Vellumine

// A button without a background: what it shows is its content item. It opens or starts something.
KestrovaButton {
    id: button

    opacity: down ? 0.7 : 1
    horizontalPadding: 0
    verticalPadding: 3

    background: Item {
        FocusRing {
            anchors.leftMargin: -6
            anchors.rightMargin: -6
            gap: 1
            radius: 6
            shown: button.visualFocus
        }
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
}
