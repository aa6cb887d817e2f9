import QtQuick

// Folders are being searched.
DropWindowStage {
    readonly property bool ready: processing.isProcessing

    Component.onCompleted: {
        batches.holdScan();
        batches.dropPhotos(3);
    }
}
