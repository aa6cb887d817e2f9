import QtQuick

// Folders are being searched, for a while.
DropWindowStage {
    readonly property bool ready: processing.offersStop

    Component.onCompleted: {
        batches.holdScan();
        batches.dropPhotos(3);
    }
}
