import QtQuick
import Vellumine
import VellumineTest

DropWindowTestCase {
    readonly property Item fill: zone ? findChild(zone, "fill") : null
    readonly property Item border: zone ? findChild(zone, "border") : null

    name: "DropZone"

    SyntheticDrag {
        id: drag
    }

    function test_zoneAtRest() {
        compare(fill.radius, 8);
        compare(fill.color, KestrovaTheme.faded(KestrovaTheme.leatherRaised, 0.9));
        compare(border.color, KestrovaTheme.faded(KestrovaTheme.cream, 0.18));
        compare(border.lineWidth, 2);
        compare(border.dashLength, 8);
        compare(border.gapLength, 6);
        const symbol = findChild(zone, "symbol");
        compare(symbol.name, "square.and.arrow.down");
        compare(symbol.size, 44);
        compare(symbol.color, KestrovaTheme.copper);
        compare(findChild(zone, "status").text, "Drop images here");
        compare(findChild(zone, "status").font, TextStyle.headline);
        fuzzyCompare(findChild(zone, "status").color, KestrovaTheme.cream, 1);
        compare(findChild(zone, "hint").text, "Drop image files or folders here, or onto the Vellumine Dock icon.");
        compare(findChild(zone, "hint").font, TextStyle.subheadline);
        fuzzyCompare(findChild(zone, "hint").color, KestrovaTheme.creamMuted, 1);
    }

    function test_highlightWhileADragHoversOverTheZoneOnly() {
        verify(!zone.isTargeted);
        verify(drag.enterWithUris(zone, 50, 50, ["file:///pictures/a.jpg"]));
        verify(zone.isTargeted);
        compare(fill.color, KestrovaTheme.faded(KestrovaTheme.copper, 0.2));
        compare(border.color, KestrovaTheme.copperBright);
        verify(!drag.move(view, 10, 10));
        verify(!zone.isTargeted);
        compare(fill.color, KestrovaTheme.faded(KestrovaTheme.leatherRaised, 0.9));
        verify(drag.move(zone, 50, 60));
        verify(zone.isTargeted);
        drag.leave(zone);
        verify(!zone.isTargeted);
    }

    function test_dragOutsideTheZoneIsRefused() {
        verify(!drag.enterWithUris(view, 10, 10, ["file:///pictures/a.jpg"]));
        verify(!zone.isTargeted);
        drag.leave(view);
    }

    function test_dragWithoutFilesIsRefused_data() {
        return [
            {tag: "a web address", uris: ["https://kestrova.example/a.jpg"]},
            {tag: "an empty list", uris: []}
        ];
    }

    function test_dragWithoutFilesIsRefused(row) {
        verify(!drag.enterWithUris(zone, 50, 50, row.uris));
        verify(!zone.isTargeted);
        drag.leave(zone);
    }

    function test_dragOfATextIsRefused() {
        verify(!drag.enterWithText(zone, 50, 50, "/pictures/a.jpg"));
        verify(!zone.isTargeted);
        drag.leave(zone);
    }

    function test_dropIsHandedOn() {
        verify(drag.enterWithUris(zone, 50, 50, ["file:///pictures/b%20%C3%A9.JPG", "file:///pictures/notes.txt"]));
        verify(drag.drop(zone, 50, 50));
        verify(!zone.isTargeted);
        tryCompare(batches, "begun", ["b é.JPG"]);
    }

    function test_severalFilesAndFoldersAtOnce() {
        const files = ["a.jpg", "b.PNG", "c.heif", "notes.txt"].map(name => "file:///pictures/" + name);
        verify(drag.enterWithUris(zone, 50, 50, files));
        verify(drag.drop(zone, 50, 50));
        batches.letAllGo();
        tryVerify(() => batches.begun.length === 3);
        compare(Array.from(batches.begun).sort(), ["a.jpg", "b.PNG", "c.heif"]);
    }

    function test_dropOfUnsupportedFilesIsAccepted() {
        verify(drag.enterWithUris(zone, 50, 50, ["file:///pictures/notes.txt"]));
        verify(zone.isTargeted);
        verify(drag.drop(zone, 50, 50));
        compare(findChild(zone, "status").text, "No supported image files found");
    }

    function test_dropDuringABatch() {
        batches.dropPhotos(1);
        tryVerify(() => batches.begun.length === 1);
        compare(findChild(zone, "symbol").name, "arrow.triangle.2.circlepath");
        verify(drag.enterWithUris(zone, 50, 50, ["file:///pictures/next.jpg"]));
        verify(drag.drop(zone, 50, 50));
        batches.letGo("photo-1.jpg");
        tryCompare(batches, "begun", ["photo-1.jpg", "next.jpg"]);
    }

    function test_keysAndAClickAskForFiles_data() {
        return [
            {tag: "a click", act: () => mouseClick(zone)},
            {tag: "Return", act: () => keyClick(Qt.Key_Return)},
            {tag: "Enter", act: () => keyClick(Qt.Key_Enter)},
            {tag: "the space bar", act: () => keyClick(Qt.Key_Space)},
            {tag: "Ctrl+O", act: () => keyClick(Qt.Key_O, Qt.ControlModifier)},
            {tag: "Ctrl+O elsewhere", act: () => {
                findChild(view, "preferencesButton").forceActiveFocus(Qt.TabFocusReason);
                keyClick(Qt.Key_O, Qt.ControlModifier);
            }}
        ];
    }

    function test_keysAndAClickAskForFiles(row) {
        zone.forceActiveFocus(Qt.TabFocusReason);
        verify(!zone.isChoosing);
        row.act();
        tryCompare(zone, "isChoosing", true);
        // in newer versions of Qt, once the window that it is drawn in has the keys
        tryVerify(() => DrawnDialogs.item("fileDialogListView")?.activeFocus);
        keyClick(Qt.Key_Escape);
        tryCompare(zone, "isChoosing", false);
        // as a window system does when that window is gone
        view.Window.window.requestActivate();
        tryVerify(() => view.Window.contentItem.activeFocus);
        compare(batches.begun, [], "nothing was chosen");
    }

    function test_pasteTakesCopiedFiles() {
        batches.copyUris(["file:///pictures/copied.png"]);
        zone.forceActiveFocus();
        keyClick(Qt.Key_V, Qt.ControlModifier);
        tryCompare(batches, "begun", ["copied.png"]);
    }

    function test_pasteOfATextIsNothing() {
        batches.copyText("/pictures/copied.png");
        zone.forceActiveFocus();
        const before = batches.presenter.statusText;
        keyClick(Qt.Key_V, Qt.ControlModifier);
        compare(batches.presenter.statusText, before);
    }

    function test_stopWhileImagesAreLookedFor() {
        const bar = findChild(zone, "bar");
        const stop = findChild(zone, "stopButton");
        batches.holdScan();
        batches.dropPhotos(3);
        tryVerify(() => stop.visible);
        verify(!bar.visible);
        const place = stop.mapToItem(view, 0, 0);
        batches.letScanGo();
        tryVerify(() => bar.visible);
        verify(stop.visible);
        compare(stop.mapToItem(view, 0, 0), place);
        batches.letAllGo();
        tryVerify(() => batches.presenter.statusText === "Done");
        batches.holdScan();
        batches.dropPhotos(3);
        tryVerify(() => stop.visible);
        mouseClick(stop);
        verify(!stop.enabled);
        mouseClick(stop);
        verify(!zone.isChoosing, "a click too many is none on the zone");
        batches.letScanGo();
        tryVerify(() => batches.presenter.statusText === "Stopped after 0 of 0");
        verify(!stop.visible);
    }

    function test_returnStopsWhereTheButtonHasTheFocus_data() {
        return [{tag: "Return", key: Qt.Key_Return}, {tag: "Enter", key: Qt.Key_Enter}];
    }

    function test_returnStopsWhereTheButtonHasTheFocus(row) {
        const stop = findChild(zone, "stopButton");
        batches.dropPhotos(10);
        tryVerify(() => findChild(zone, "bar").visible);
        stop.forceActiveFocus(Qt.TabFocusReason);
        keyClick(row.key);
        compare(stop.Accessible.name, "Stop now");
        verify(!zone.isChoosing);
        batches.letAllGo();
        tryVerify(() => batches.presenter.statusText.startsWith("Stopped after "));
    }

    function test_progressAndStop() {
        const bar = findChild(zone, "bar");
        const stop = findChild(zone, "stopButton");
        verify(!bar.visible);
        verify(!stop.visible);
        batches.dropPhotos(10);
        tryVerify(() => bar.visible);
        batches.letGo("photo-1.jpg");
        tryCompare(bar, "value", 0.1);
        verify(stop.enabled);
        compare(stop.Accessible.name, "Stop");
        mouseClick(stop);
        compare(stop.Accessible.name, "Stop now");
        verify(stop.enabled);
        batches.letAllGo();
        tryVerify(() => batches.presenter.statusText.startsWith("Stopped after "));
        verify(!bar.visible);
    }
}
