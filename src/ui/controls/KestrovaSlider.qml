import QtQuick
import QtQuick.Templates as T
import Vellumine

// A horizontal slider. Give it an Accessible.name; on light cards set `light`.
T.Slider {
    id: control

    property bool light: false

    // Step by step: a value that is assigned follows no binding any more.
    function moveBy(steps) {
        for (let step = 0; step < steps && value < to; ++step)
            increase();
        for (let step = 0; step > steps && value > from; --step)
            decrease();
        moved();
    }

    Accessible.onDecreaseAction: {
        decrease();
        moved();
    }
    Accessible.onIncreaseAction: {
        increase();
        moved();
    }
    Keys.onPressed: event => {
        switch (event.key) {
        case Qt.Key_Home:
            moveBy(-Infinity);
            break;
        case Qt.Key_End:
            moveBy(Infinity);
            break;
        case Qt.Key_PageUp:
            moveBy(10);
            break;
        case Qt.Key_PageDown:
            moveBy(-10);
            break;
        default:
            return;
        }
        event.accepted = true;
    }
    hoverEnabled: true
    implicitHeight: 24
    implicitWidth: 180
    opacity: enabled ? 1 : 0.5
    padding: 2

    background: Rectangle {
        color: KestrovaTheme.faded(control.light ? KestrovaTheme.mutedInk : KestrovaTheme.cream, 0.25)
        height: 4
        radius: 2
        width: control.availableWidth
        x: control.leftPadding
        y: (control.height - height) / 2

        Rectangle {
            color: control.light ? KestrovaTheme.copper : KestrovaTheme.copperBright
            height: parent.height
            radius: 2
            width: control.position * parent.width
            x: control.mirrored ? parent.width - width : 0
        }
    }
    handle: Rectangle {
        border.color: control.pressed || control.hovered ? KestrovaTheme.copperBright : KestrovaTheme.faded(KestrovaTheme.copperStrong, 0.7)
        border.width: 1
        color: control.pressed ? KestrovaTheme.lightCard : KestrovaTheme.lightCardRaised
        implicitHeight: 18
        implicitWidth: 18
        radius: 9
        x: control.leftPadding + control.visualPosition * (control.availableWidth - width)
        y: (control.height - height) / 2

        FocusRing {
            radius: height / 2
            shown: control.visualFocus
        }
    }
}
