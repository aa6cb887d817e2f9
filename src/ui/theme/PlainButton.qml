import QtQuick
import QtQuick.Templates as T
import Vellumine

// A button without a background: what it shows is its content item. It opens or starts something.
T.AbstractButton {
    id: button

    property string helpText

    Accessible.description: helpText
    Accessible.name: text
    Accessible.onPressAction: clicked()
    Accessible.role: Accessible.Button
    hoverEnabled: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
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

    HelpText {
        control: button
        text: button.helpText
    }
}
