import QtQuick
import QtQuick.Templates as T
import Vellumine

// The help text of a control, shown while the pointer rests on it.
T.ToolTip {
    id: tip

    required property T.Control control

    delay: 600
    enter: Transition {
        NumberAnimation {
            duration: Motion.quick
            from: 0
            property: "opacity"
            to: 1
        }
    }
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    horizontalPadding: 8
    margins: 6
    parent: control
    timeout: 8000
    verticalPadding: 5
    visible: control.hovered && text.length > 0
    x: (control.width - width) / 2
    y: control.height + 6

    background: Rectangle {
        border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.2)
        color: KestrovaTheme.leatherDeep
        radius: 6
    }
    contentItem: Text {
        color: KestrovaTheme.cream
        font: TextStyle.subheadline
        text: tip.text
    }
}
