import QtQuick
import QtQuick.Templates as T
import Vellumine

// A thin bar at the edge of what scrolls, and nothing where all of it is in sight. It is for the pointer only.
T.ScrollBar {
    id: bar

    Accessible.ignored: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    minimumSize: 0.08
    padding: 3
    visible: size < 1

    contentItem: Rectangle {
        color: KestrovaTheme.faded(KestrovaTheme.cream, bar.pressed ? 0.6 : bar.hovered ? 0.46 : 0.3)
        implicitHeight: 5
        implicitWidth: 5
        radius: 2.5
    }
}
