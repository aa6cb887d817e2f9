import QtQuick
import Vellumine

// The label of a picker that stands in a menu.
Text {
    Accessible.role: Accessible.StaticText
    bottomPadding: 4
    color: KestrovaTheme.creamSubtle
    font: TextStyle.subheadline
    horizontalAlignment: Text.AlignLeft
    leftPadding: 12
    rightPadding: 8
    topPadding: 4
}
