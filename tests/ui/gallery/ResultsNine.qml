import QtQuick
import QtQuick.Layouts
import Vellumine
import VellumineTest

// Nine results, among them a failure and a file that grew, over the lifetime totals.
Rectangle {
    id: scene

    property int count: 9

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft
    color: KestrovaTheme.bg
    height: 760
    width: 820

    Component.onCompleted: {
        const all = [
            () => fixture.addSuccess("IMG_0001.heic", 2400000, 2400000, {"formats": ["HEIC", "HEIC"], "colour": "kept", "metadataKept": true}),
            () => fixture.addSuccess("winter/Hütte im Schnee – Übersicht mit einem sehr langen Namen, der nirgends ganz hineinpasst, weil er nicht aufhört.tiff", 48123456, 3321000, {"formats": ["TIFF", "WebP Lossless"]}),
            () => fixture.addSuccess("icon.png", 812, 1403, {"formats": ["PNG", "JPEG"], "sizes": [64, 64, 64, 64], "alpha": true}),
            () => fixture.addUnreadable("half-downloaded.jpg"),
            () => fixture.addSuccess("Poster transparent.png", 12432100, 2210004, {"formats": ["PNG", "WebP Lossless"], "sizes": [10240, 12288, 10240, 12288], "alpha": true, "alphaKept": true, "colour": "removed"}),
            () => fixture.addSuccess("scan-17.bmp", 6220854, 412000, {"formats": ["BMP", "PNG"]}),
            () => fixture.addSuccess("Dolomites at dawn.jpg", 8411230, 1204551),
            () => fixture.addSuccess("<b>Sale & Co.gif", 120000, 90000, {"formats": ["GIF", "WebP Lossy"], "sizes": [640, 480, 640, 480]}),
            () => fixture.addSuccess("Sunset over the harbour.jpg", 5230004, 842000)];
        for (const add of all.slice(0, count))
            add();
        stats.set(1312, 1304, 9412000000, 2210000000, 7202000000, 44802456);
    }

    ResultsFixture {
        id: fixture
    }

    StatsFixture {
        id: stats
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 22
        spacing: 18

        ResultsList {
            Layout.fillWidth: true
            results: fixture.model
        }

        LifetimeStatsStrip {
            Layout.fillWidth: true
            stats: stats.presenter
        }

        Item {
            Layout.fillHeight: true
        }
    }
}
