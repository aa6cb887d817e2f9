import QtQuick

// The application menu.
DropWindowStage {
    Component.onCompleted: Qt.callLater(showMenu)
}
