import QtQuick
import Vellumine

// Shows where the keyboard is: a ring around its parent.
Rectangle {
    id: ring

    property bool shown: false
    property real gap: 2

    anchors.fill: parent
    anchors.margins: -gap
    border.color: KestrovaTheme.copperBright
    border.width: 2
    color: "transparent"
    visible: shown
    z: 1
}
