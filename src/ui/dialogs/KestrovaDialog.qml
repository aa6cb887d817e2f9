import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import Vellumine

// A question or a notice in the middle of its window, which waits below it. Give it a title; what it holds is its content item.
T.Popup {
    id: dialog

    property real cornerRadius: 0
    property string title

    Overlay.modal: Rectangle {
        color: KestrovaTheme.faded(KestrovaTheme.leatherDeep, 0.66)
        radius: dialog.cornerRadius
    }
    focus: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: Math.max(320, implicitContentWidth + leftPadding + rightPadding)
    margins: 24
    modal: true
    padding: 22
    parent: Overlay.overlay
    x: Math.round((parent.width - width) / 2)
    y: Math.round((parent.height - height) / 2)

    background: Rectangle {
        Accessible.name: dialog.title
        Accessible.role: Accessible.Dialog
        border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.2)
        color: KestrovaTheme.bgWarm
        radius: 12
    }
}
