import QtQuick
import QtQuick.Templates as T
import Vellumine

// A switch with its text behind it. On light cards set `light`.
T.Switch {
    id: control

    property bool light: false

    Accessible.name: text
    Accessible.onPressAction: {
        toggle();
        toggled();
    }
    Accessible.onToggleAction: {
        toggle();
        toggled();
    }
    font: TextStyle.body
    hoverEnabled: true
    implicitHeight: Math.max(implicitIndicatorHeight, implicitContentHeight) + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    opacity: enabled ? 1 : 0.5
    padding: 0
    verticalPadding: 3
    spacing: 10

    contentItem: Text {
        color: control.light ? KestrovaTheme.ink : KestrovaTheme.cream
        font: control.font
        leftPadding: control.mirrored ? 0 : control.indicator.width + control.spacing
        rightPadding: control.mirrored ? control.indicator.width + control.spacing : 0
        horizontalAlignment: Text.AlignLeft
        text: control.text
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.WordWrap
    }
    indicator: Rectangle {
        border.color: control.checked ? KestrovaTheme.copperBright : KestrovaTheme.faded(control.light ? KestrovaTheme.mutedInk : KestrovaTheme.cream, 0.6)
        color: control.checked ? KestrovaTheme.copper : KestrovaTheme.faded(control.light ? KestrovaTheme.mutedInk : KestrovaTheme.cream, control.hovered ? 0.28 : 0.18)
        implicitHeight: 20
        implicitWidth: 36
        radius: height / 2
        x: control.mirrored ? control.width - width - control.rightPadding : control.leftPadding
        y: (control.height - height) / 2

        Behavior on color {
            ColorAnimation {
                duration: Motion.quick
            }
        }

        Rectangle {
            color: control.checked || !control.light ? KestrovaTheme.cream : KestrovaTheme.lightCardRaised
            border.color: KestrovaTheme.faded(KestrovaTheme.leatherDeep, 0.4)
            height: 14
            radius: 7
            width: 14
            x: 3 + control.visualPosition * (parent.width - width - 6)
            y: 3

            Behavior on x {
                enabled: !control.down

                NumberAnimation {
                    duration: Motion.quick
                    easing.type: Easing.OutCubic
                }
            }
        }

        FocusRing {
            radius: height / 2
            shown: control.visualFocus
        }
    }
}
