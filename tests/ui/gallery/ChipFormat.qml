import QtQuick

// The menu of the format chip.
DropWindowStage {
    Component.onCompleted: Qt.callLater(() => openMenu(0))
}
