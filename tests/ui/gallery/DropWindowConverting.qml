import QtQuick

// The third of five files is being converted.
DropWindowStage {
    readonly property bool ready: processing.statusText.startsWith("Optimized 2")

    Component.onCompleted: {
        batches.dropPhotos(5);
        batches.letGo("photo-1.jpg");
        batches.letGo("photo-2.jpg");
        totals.set(1312, 1304, 9412000000, 2210000000, 7202000000, 44802456);
    }
}
