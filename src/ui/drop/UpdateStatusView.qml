import QtQuick
import Vellumine

// Shows that a check for updates failed or found something, and nothing otherwise. The name of a version is whatever the
// maker's page says: a long one shows its beginning.
Item {
    id: view

    property real maximumWidth: Infinity
    required property UpdatePresenter updates

    readonly property Item shown: updates.canRetry ? retry : updates.isAvailable ? update : null

    implicitHeight: shown?.implicitHeight ?? 0
    implicitWidth: shown?.implicitWidth ?? 0

    PlainButton {
        id: retry

        helpText: view.updates.retryHelpText
        objectName: "retryButton"
        text: view.updates.retryHelpText
        visible: view.shown === retry

        contentItem: SymbolImage {
            color: KestrovaTheme.copper
            name: "arrow.clockwise"
            size: 16
        }

        onClicked: view.updates.retry()
    }

    PlainButton {
        id: update

        Accessible.role: Accessible.Link
        font: TextStyle.subheadline
        helpText: view.updates.updateHelpText
        objectName: "updateButton"
        text: view.updates.updateText
        visible: view.shown === update

        contentItem: Row {
            spacing: 5

            SymbolImage {
                id: sparkle

                anchors.verticalCenter: parent.verticalCenter
                color: KestrovaTheme.copperBright
                name: "sparkle"
                size: 13
            }

            Text {
                anchors.verticalCenter: parent.verticalCenter
                color: KestrovaTheme.copperBright
                elide: Text.ElideRight
                font: TextStyle.subheadlineStrong
                maximumLineCount: 1
                objectName: "updateLabel"
                text: update.text
                textFormat: Text.PlainText
                width: Math.max(0, Math.min(implicitWidth, view.maximumWidth - update.leftPadding - update.rightPadding - sparkle.width - arrow.width - 2 * parent.spacing))
            }

            SymbolImage {
                id: arrow

                anchors.verticalCenter: parent.verticalCenter
                color: KestrovaTheme.copperBright
                name: "arrow.down.circle"
                size: 14
            }
        }

        onClicked: Qt.openUrlExternally(view.updates.downloadUrl)
    }
}
