import QtQuick

// Nine results: a failure, a file that grew, and more than fit without scrolling.
DropWindowStage {
    height: 1182

    Component.onCompleted: {
        list.addSuccess("IMG_0001.heic", 2400000, 2400000, {"formats": ["HEIC", "HEIC"], "colour": "kept", "metadataKept": true});
        list.addSuccess("icon.png", 812, 1403, {"formats": ["PNG", "JPEG"], "sizes": [64, 64, 64, 64], "alpha": true});
        list.addUnreadable("half-downloaded.jpg");
        list.addMany(6);
        totals.set(1312, 1304, 9412000000, 2210000000, 7202000000, 44802456);
    }
}
