import QtQuick

// The same in the lowest window, with results.
DropWindowConverting {
    height: 420
    width: 720

    Component.onCompleted: list.addMany(3)
}
