import QtQuick

// Name and version.
DropWindowStage {
    Component.onCompleted: Qt.callLater(showAbout)
}
