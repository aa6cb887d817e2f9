import QtQuick
import Vellumine

// Both pictures in the same place, the one before left of the split, the one after right of it. The
// split follows the pointer and the arrow keys. Left and right are the pictures' own: they stay
// where they are when the window is mirrored.
Rectangle {
    id: canvas

    required property ComparisonPresenter presenter
    readonly property real splitX: presenter.split * width
    readonly property real sampleX: Math.round((width - presenter.displaySize.width) / 2)
    readonly property real sampleY: Math.round((height - presenter.displaySize.height) / 2)
    // a square corner this far inside a round one does not stand out of it
    readonly property real inset: 3
    // The labels stand on the pictures where both find room there beside each other and above the handle, else in the corners.
    readonly property bool hasRoomForLabels: presenter.displaySize.width >= beforeLabel.width + afterLabel.width + 4 * 8 && presenter.displaySize.height >= 2 * (8 + beforeLabel.height) + handle.height
    readonly property real labelX: hasRoomForLabels ? Math.max(7, sampleX - inset + 8) : 7
    readonly property real labelY: hasRoomForLabels ? Math.max(7, sampleY - inset + 8) : 7
    property bool usedByKeyboard: false
    // what a screen reader says and sets, by the names that it knows: hundredths
    property real value: 50
    readonly property real minimumValue: 0
    readonly property real maximumValue: 100
    readonly property real stepSize: 1

    Accessible.description: presenter.splitText
    Accessible.focusable: true
    Accessible.name: qsTr("Before / After Review")
    Accessible.onDecreaseAction: presenter.moveSplit(-1)
    Accessible.onIncreaseAction: presenter.moveSplit(1)
    Accessible.role: Accessible.Slider
    Keys.onPressed: event => {
        usedByKeyboard = true;
        const step = event.modifiers & Qt.ShiftModifier ? 10 : 1;
        switch (event.key) {
        case Qt.Key_Left:
            presenter.moveSplit(-step);
            break;
        case Qt.Key_Right:
            presenter.moveSplit(step);
            break;
        case Qt.Key_Home:
            presenter.setSplit(0);
            break;
        case Qt.Key_End:
            presenter.setSplit(1);
            break;
        default:
            return;
        }
        event.accepted = true;
    }
    // the Tab key that brought the focus here was pressed elsewhere
    Keys.onReleased: usedByKeyboard = true
    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: false
    activeFocusOnTab: true
    border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.16)
    border.width: 1
    color: KestrovaTheme.leatherDeep
    radius: 8

    onValueChanged: {
        if (value !== Math.round(presenter.split * 100))
            presenter.setSplit(value / 100);
    }

    Binding on value {
        value: Math.round(canvas.presenter.split * 100)
    }

    ComparisonSide {
        height: canvas.height - 2 * canvas.inset
        y: canvas.inset
        id: before

        objectName: "beforeSide"
        picture: canvas.presenter.sourceImage
        pictureSize: canvas.presenter.displaySize
        pictureX: canvas.sampleX - x
        pictureY: canvas.sampleY - y
        width: Math.max(0, Math.min(canvas.splitX, canvas.width - canvas.inset) - x)
        x: canvas.inset

        ReviewSideLabel {
            id: beforeLabel

            text: qsTr("Before")
            x: canvas.labelX
            y: canvas.labelY
        }
    }

    ComparisonSide {
        height: canvas.height - 2 * canvas.inset
        y: canvas.inset
        id: after

        objectName: "afterSide"
        picture: canvas.presenter.outputImage
        pictureSize: canvas.presenter.displaySize
        pictureX: canvas.sampleX - x
        pictureY: canvas.sampleY - y
        width: Math.max(0, canvas.width - canvas.inset - x)
        x: Math.max(canvas.splitX, canvas.inset)

        ReviewSideLabel {
            id: afterLabel

            anchors.right: parent.right
            anchors.rightMargin: canvas.labelX
            text: qsTr("After")
            y: canvas.labelY
        }
    }

    Rectangle {
        color: Qt.rgba(0, 0, 0, 0.3)
        height: parent.height - 2
        width: 4
        x: canvas.splitX - 2
        y: 1
    }

    Rectangle {
        color: KestrovaTheme.cream
        height: parent.height - 2
        objectName: "splitLine"
        width: 2
        x: canvas.splitX - 1
        y: 1

        Rectangle {
            anchors.centerIn: parent
            border.color: KestrovaTheme.cream
            border.width: 2
            color: KestrovaTheme.copper
            height: 22
            id: handle

            objectName: "splitHandle"
            radius: 11
            width: 22

            SymbolImage {
                anchors.verticalCenter: parent.verticalCenter
                color: KestrovaTheme.cream
                name: "chevron.left"
                size: 9
                x: 2
            }

            SymbolImage {
                anchors.verticalCenter: parent.verticalCenter
                color: KestrovaTheme.cream
                name: "chevron.right"
                size: 9
                x: 11
            }
        }
    }

    FocusRing {
        radius: 10
        shown: canvas.activeFocus && canvas.usedByKeyboard
    }

    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.SplitHCursor
        hoverEnabled: true

        onEntered: canvas.presenter.pointAt(mouseX, width)
        onPositionChanged: event => {
            canvas.usedByKeyboard = false;
            canvas.presenter.pointAt(event.x, width);
        }
        onPressed: event => canvas.presenter.pointAt(event.x, width)
    }
}
