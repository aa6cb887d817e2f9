import QtQuick

// An ordinary day; the picture of the program.
DropWindowStage {
    height: 822

    Component.onCompleted: {
        list.addUnreadable("half-downloaded.jpg");
        list.addSuccess("Letter from Grandmother.tiff", 48123456, 3321000, {"formats": ["TIFF", "WebP Lossy"], "sizes": [4960, 7016, 2560, 3621]});
        list.addSuccess("Market in Palermo.png", 12432100, 1210004, {"formats": ["PNG", "WebP Lossy"], "sizes": [3840, 2160, 2560, 1440], "alpha": true, "alphaKept": true});
        list.addSuccess("Dolomites at dawn.heic", 2841230, 1204551, {"formats": ["HEIC", "WebP Lossy"]});
        list.addSuccess("Sunset over the harbour.jpg", 5230004, 842000);
        totals.set(1312, 1304, 9412000000, 2210000000, 7202000000, 44802456);
    }
}
