import QtQuick

// A file stands where the output goes.
DropWindowStage {
    Component.onCompleted: Qt.callLater(() => questions.askOverwrite("/pictures/Sunset over the harbour.webp"))
}
