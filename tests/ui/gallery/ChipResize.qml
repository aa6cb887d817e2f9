import QtQuick

// The menu of the resize chip.
DropWindowStage {
    Component.onCompleted: Qt.callLater(() => openMenu(1))
}
