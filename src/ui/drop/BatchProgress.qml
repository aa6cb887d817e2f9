import QtQuick
import QtQuick.Templates as T
import Vellumine

// How far the batch is, in a thin bar, and the button that stops it. While images are looked for the button is alone, and
// only if that takes a while. Nothing where there is nothing to stop.
Item {
    id: progress

    required property ProcessingPresenter processing

    implicitHeight: stop.implicitHeight
    visible: processing.offersStop

    T.ProgressBar {
        id: bar

        Accessible.name: progress.processing.progressText
        anchors.left: parent.left
        anchors.right: stop.left
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        implicitHeight: 4
        objectName: "bar"
        visible: progress.processing.hasProgress
        value: progress.processing.progress

        background: Rectangle {
            color: KestrovaTheme.faded(KestrovaTheme.cream, 0.16)
            radius: 2
        }
        contentItem: Item {
            Rectangle {
                color: KestrovaTheme.copperBright
                height: parent.height
                radius: 2
                width: bar.visualPosition * parent.width
                x: bar.mirrored ? parent.width - width : 0

                Behavior on width {
                    NumberAnimation {
                        duration: Motion.calm
                        easing.type: Easing.OutCubic
                    }
                }
            }
        }
    }

    // A click on the button that has nothing more to stop is none on what lies below.
    MouseArea {
        anchors.fill: stop
    }

    SquareButton {
        id: stop

        anchors.right: parent.right
        enabled: progress.processing.canStop
        helpText: progress.processing.stopText
        implicitHeight: 24
        implicitWidth: 24
        objectName: "stopButton"
        restingOpacity: 0.1
        symbol: "stop"
        tone: KestrovaTheme.cream

        onClicked: progress.processing.stop()
    }
}
