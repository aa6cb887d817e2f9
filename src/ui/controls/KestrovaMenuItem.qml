import QtQuick
import QtQuick.Templates as T
import Vellumine

// One line of a menu. Checkable ones leave room for their mark; `symbol` and `shortcutText` may be empty.
T.MenuItem {
    id: item

    property string symbol
    property string shortcutText
    readonly property color textColor: KestrovaTheme.faded(KestrovaTheme.cream, enabled ? 1 : 0.6)

    Accessible.name: text
    Accessible.onPressAction: {
        toggle();
        triggered();
    }
    font: TextStyle.body
    implicitHeight: 28
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: 8
    rightPadding: 8

    arrow: Text {
        color: item.highlighted ? KestrovaTheme.cream : KestrovaTheme.creamSubtle
        font: TextStyle.subheadline
        text: item.shortcutText
        x: item.mirrored ? item.rightPadding : item.width - width - item.rightPadding
        y: (item.height - height) / 2
    }
    background: Rectangle {
        color: item.highlighted || item.down ? KestrovaTheme.copper : "transparent"
        radius: 6
    }
    contentItem: Text {
        readonly property real before: item.checkable || item.symbol ? 22 : 4
        readonly property real after: item.shortcutText ? item.arrow.width + 28 : 8

        color: item.textColor
        elide: Text.ElideRight
        font: item.font
        horizontalAlignment: Text.AlignLeft
        leftPadding: item.mirrored ? after : before
        rightPadding: item.mirrored ? before : after
        text: item.text
        verticalAlignment: Text.AlignVCenter
    }
    indicator: SymbolImage {
        color: item.textColor
        name: item.checkable ? "checkmark" : item.symbol
        size: 14
        visible: !item.checkable || item.checked
        x: item.mirrored ? item.width - width - item.leftPadding : item.leftPadding
        y: (item.height - height) / 2
    }
}
