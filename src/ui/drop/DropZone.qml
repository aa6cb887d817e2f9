import QtQuick
import QtQuick.Templates as T
import Vellumine

// Where files are dropped, and what becomes of them in one line. A click or Return asks for files instead.
T.AbstractButton {
    id: zone

    required property ProcessingPresenter processing
    readonly property bool isTargeted: target.isTargeted
    readonly property bool isChoosing: panel.item?.visible ?? false
    readonly property real cornerRadius: 8

    function chooseFiles() {
        if (!panel.item)
            panel.setSource("OpenFilesDialog.qml", {"processing": zone.processing});
        panel.item["open"]();
    }

    Accessible.description: processing.hintText
    Accessible.name: processing.statusText
    Accessible.onPressAction: clicked()
    Accessible.role: Accessible.Button
    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()
    implicitHeight: Math.max(170, implicitContentHeight + topPadding + bottomPadding)
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    padding: 16

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
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 12
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
