import QtQuick
import Vellumine

// Where files are dropped, and what becomes of them in one line. A click or Return asks for files instead.
KestrovaButton {
    id: zone

    required property ProcessingPresenter processing
    readonly property bool isTargeted: target.isTargeted
    readonly property bool isChoosing: panel.item?.visible ?? false
    readonly property real cornerRadius: 8
    readonly property bool isLow: height < 104
    // So low that the texts have to make room for the bar.
    readonly property bool isCrowded: progress.visible && height < implicitContentHeight + 2 * 26

    function chooseFiles() {
        if (!panel.item)
            panel.setSource("OpenFilesDialog.qml", {"processing": zone.processing});
        panel.item["open"]();
    }

    Accessible.description: processing.hintText
    Accessible.name: processing.statusText
    implicitHeight: Math.max(170, implicitContentHeight + 2 * 16)
    bottomPadding: isCrowded ? height - progress.y - progress.height / 2 + 4 : verticalPadding
    horizontalPadding: 16
    verticalPadding: isLow ? 8 : 16

    background: Rectangle {
        color: zone.isTargeted ? KestrovaTheme.faded(KestrovaTheme.copper, 0.2) : KestrovaTheme.faded(KestrovaTheme.leatherRaised, 0.9)
        objectName: "fill"
        radius: zone.cornerRadius

        DashedBorder {
            anchors.fill: parent
            color: zone.isTargeted ? KestrovaTheme.copperBright : KestrovaTheme.faded(KestrovaTheme.cream, 0.18)
            objectName: "border"
            radius: zone.cornerRadius
        }

        FocusRing {
            radius: zone.cornerRadius + 2
            shown: zone.visualFocus
        }
    }
    contentItem: DropZoneContent {
        processing: zone.processing
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }

    DropTarget {
        id: target

        anchors.fill: parent

        onDropped: urls => zone.processing.loadDroppedFiles(urls)
    }

    BatchProgress {
        id: progress

        anchors.bottom: parent.bottom
        anchors.bottomMargin: zone.isLow ? Math.max(2, (zone.height - 44) / 4) : 12
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.right: parent.right
        anchors.rightMargin: 16
        processing: zone.processing
    }

    // By its address: what dialogs need is loaded when the first one opens.
    Loader {
        id: panel
    }

    onClicked: chooseFiles()
}
