import QtQuick

// The menu of the destination chip.
DropWindowStage {
    Component.onCompleted: {
        preferences.storeFolder("/home/somebody/Pictures/For the web");
        preferences.presenter.destinationMode = 1;
        Qt.callLater(() => openMenu(3));
    }
}
