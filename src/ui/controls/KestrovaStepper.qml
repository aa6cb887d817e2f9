import QtQuick
import QtQuick.Templates as T
import Vellumine

// Two small buttons that count a value up and down; the owner does the counting. Up and Down do the same.
// Give it an Accessible.name; on light cards set `light`.
T.Control {
    id: stepper

    property bool light: false
    property bool canIncrease: true
    property bool canDecrease: true

    signal increased
    signal decreased

    function step(up) {
        if (up && canIncrease)
            increased();
        else if (!up && canDecrease)
            decreased();
    }

    Accessible.onDecreaseAction: step(false)
    Accessible.onIncreaseAction: step(true)
    Accessible.role: Accessible.SpinBox
    Keys.onDownPressed: step(false)
    Keys.onUpPressed: step(true)
    focusPolicy: Qt.StrongFocus
    implicitHeight: 28
    implicitWidth: 22
    opacity: enabled ? 1 : 0.5

    background: Rectangle {
        border.color: KestrovaTheme.faded(stepper.light ? KestrovaTheme.copperStrong : KestrovaTheme.cream, 0.3)
        color: stepper.light ? KestrovaTheme.lightCardRaised : KestrovaTheme.leatherRaised
        radius: 6

        FocusRing {
            radius: 8
            shown: stepper.visualFocus
        }
    }
    contentItem: Item {
        StepperHalf {
            enabled: stepper.canIncrease
            light: stepper.light
            symbol: "chevron.up"

            onClicked: stepper.increased()
        }

        StepperHalf {
            enabled: stepper.canDecrease
            light: stepper.light
            symbol: "chevron.down"
            y: height

            onClicked: stepper.decreased()
        }
    }
}
