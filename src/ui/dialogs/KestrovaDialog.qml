import QtQuick
import QtQuick.Templates as T
import Vellumine

// A question or a notice in the middle of its window, which waits below it. Give it a title; what it holds is its content item.
T.Popup {
    id: dialog

    property real cornerRadius: 0
    property string title

    focus: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: Math.max(320, implicitContentWidth + leftPadding + rightPadding)
    margins: 24
    modal: true
    padding: 22
    // Its own dimming, and not the overlay's: that one would paint over the window's round corners.
    dim: false
    parent: T.Overlay.overlay
    x: Math.round((parent.width - width) / 2)
    y: Math.round((parent.height - height) / 2)

    background: Rectangle {
        Accessible.name: dialog.title
        Accessible.role: Accessible.Dialog
        border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.2)
        color: KestrovaTheme.bgWarm
        radius: 12

        Rectangle {
            color: KestrovaTheme.faded(KestrovaTheme.leatherDeep, 0.66)
            height: dialog.parent.height
            radius: dialog.cornerRadius
            width: dialog.parent.width
            x: -dialog.x
            y: -dialog.y
            z: -1
        }
    }
}
