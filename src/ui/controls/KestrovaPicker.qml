import QtQuick
import QtQuick.Templates as T
import Vellumine

// Chooses one of a few texts from a menu. Give it an Accessible.name; on light cards set `light`.
T.ComboBox {
    id: control

    property bool light: false
    readonly property color textColor: light ? KestrovaTheme.ink : KestrovaTheme.cream

    font: TextStyle.body
    hoverEnabled: true
    implicitContentWidthPolicy: T.ComboBox.WidestText
    implicitHeight: 28
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: mirrored ? 28 : 10
    opacity: enabled ? 1 : 0.5
    rightPadding: mirrored ? 10 : 28

    background: Rectangle {
        border.color: KestrovaTheme.faded(control.light ? KestrovaTheme.copperStrong : KestrovaTheme.cream, control.hovered || control.down ? 0.5 : 0.3)
        color: control.light ? (control.down ? KestrovaTheme.lightCard : KestrovaTheme.lightCardRaised) : (control.down ? KestrovaTheme.leatherDeep : KestrovaTheme.leatherRaised)
        radius: 6

        FocusRing {
            radius: 8
            shown: control.visualFocus
        }
    }
    // its implicit width is that of the widest choice
    contentItem: T.TextField {
        Accessible.ignored: true
        color: control.textColor
        enabled: false
        font: control.font
        readOnly: true
        text: control.displayText
        verticalAlignment: TextInput.AlignVCenter
    }
    delegate: KestrovaPickerItem {
        picker: (ListView.view as KestrovaPickerList).picker
    }
    indicator: SymbolImage {
        color: control.textColor
        name: "chevron.up.chevron.down"
        size: 12
        x: control.mirrored ? 10 : control.width - width - 10
        y: (control.height - height) / 2
    }
    popup: T.Popup {
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        margins: 8
        padding: 6
        width: Math.max(control.width, control.implicitContentWidth + 60)
        y: control.height + 4

        background: Rectangle {
            border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.18)
            color: KestrovaTheme.leatherDeep
            radius: 10
        }
        contentItem: KestrovaPickerList {
            picker: control
        }
        enter: Transition {
            NumberAnimation {
                duration: Motion.quick
                from: 0
                property: "opacity"
                to: 1
            }
        }
        exit: Transition {
            NumberAnimation {
                duration: Motion.quick
                property: "opacity"
                to: 0
            }
        }
    }
}
