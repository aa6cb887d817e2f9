import QtQuick

// The menu of the quality chip.
DropWindowStage {
    Component.onCompleted: Qt.callLater(() => openMenu(2))
}
