import QtQuick
import QtTest
import Vellumine
import VellumineTest

DropWindowTestCase {
    id: test

    name: "DropWindowView"

    Component {
        id: filledList

        ResultsFixture {}
    }

    SignalSpy {
        id: preferencesSpy

        signalName: "preferencesRequested"
    }

    function showResults(count) {
        const list = createTemporaryObject(filledList, test);
        list.addMany(count);
        view.results = list.model;
        return list;
    }

    function test_sizesOfTheLayout() {
        compare(view.implicitWidth, 720);
        compare(view.implicitHeight, 420);
        const header = findChild(view, "header");
        const footer = findChild(view, "footer");
        compare(header.mapToItem(view, 0, 0), Qt.point(22, 42));
        compare(footer.mapToItem(view, 0, footer.height), Qt.point(22, 440 - 22));
        compare(zone.mapToItem(view, 0, 0).y, 42 + header.height + 18);
        compare(zone.width, 820 - 44);
        verify(zone.height >= 170);
        compare(findChild(view, "title").text, "Vellumine");
        fuzzyCompare(findChild(view, "title").color, KestrovaTheme.cream, 1);
        compare(findChild(view, "title").font.pixelSize, 17);
        verify(findChild(view, "title").font.bold);
    }

    function test_nothingIsCutAtTheSmallestSize() {
        test.width = 720;
        test.height = 420;
        waitForRendering(view);
        verify(zone.height >= 170);
        const content = findChild(zone, "hint");
        const bottom = content.mapToItem(zone, 0, content.height).y;
        verify(bottom <= zone.height);
        verify(findChild(view, "footer").mapToItem(view, 0, 0).y < 420 - 22);
    }

    function test_nothingIsOutsideALowWindowWithResults_data() {
        return [
            {tag: "the lowest, with settings in two lines", height: 394, symbol: false, hint: false},
            {tag: "the lowest", height: 420, symbol: false, hint: true},
            {tag: "low", height: 480, symbol: false, hint: true},
            {tag: "with room for all of the zone", height: 650, symbol: true, hint: true}
        ];
    }

    function test_nothingIsOutsideALowWindowWithResults(row) {
        test.width = 720;
        test.height = row.height;
        showResults(5);
        waitForRendering(view);
        const footer = findChild(view, "footer");
        compare(footer.mapToItem(view, 0, footer.height).y, row.height - 22);
        verify(findChild(view, "scrollingArea").height >= 76);
        for (const [name, shown] of [["symbol", row.symbol], ["hint", row.hint], ["status", true]]) {
            const item = findChild(zone, name);
            compare(item.visible, shown, name);
            const place = item.mapToItem(zone, 0, 0, item.width, item.height);
            verify(!shown || (place.top >= 8 && place.bottom <= zone.height - 8), name);
        }
        compare(zone.height >= 170, row.height === 650);
    }

    function test_theBarOfALowWindowLeavesTheTextsAlone() {
        test.width = 720;
        showResults(5);
        batches.dropPhotos(4);
        const bar = findChild(zone, "bar");
        tryVerify(() => bar.visible);
        for (let height = 360; height <= 560; height += 5) {
            test.height = height;
            waitForRendering(view);
            verify(zone.height >= 46);
            const top = bar.mapToItem(zone, 0, 0).y;
            for (const name of ["symbol", "status", "hint"]) {
                const item = findChild(zone, name);
                const place = item.mapToItem(zone, 0, 0, item.width, item.height);
                verify(!item.visible || (place.top >= 4 && place.bottom < top), height + ": " + name + " ends at " + place.bottom + ", the bar begins at " + top);
            }
            verify(findChild(zone, "status").visible);
            const stop = findChild(zone, "stopButton");
            verify(stop.mapToItem(zone, 0, stop.height).y <= zone.height - 2);
        }
        batches.letAllGo();
        tryVerify(() => batches.presenter.statusText === "Done");
    }

    function test_aLineThatTakesSeveralStaysInsideALowZone() {
        test.width = 240;
        showResults(5);
        batches.presenter.loadDroppedFiles(["file:///notes.txt"]);
        const status = findChild(zone, "status");
        verify(status.lineCount > 1);
        for (let height = 420; height >= 360; height -= 10) {
            test.height = height;
            waitForRendering(view);
            const place = status.mapToItem(zone, 0, 0, status.width, status.height);
            verify(place.top >= zone.topPadding && place.bottom <= zone.height - zone.bottomPadding, height + ": from " + place.top + " to " + place.bottom + " of " + zone.height);
            verify(status.contentHeight <= status.height);
        }
    }

    function test_theTotalsGiveWayWhereNotEvenOneLineOfTheZoneIsLeft() {
        test.width = 720;
        showResults(5);
        const strip = findChild(view, "stats");
        const footer = findChild(view, "footer");
        for (const [height, shown] of [[420, true], [384, false], [370, false], [420, true]]) {
            test.height = height;
            waitForRendering(view);
            compare(strip.visible, shown);
            verify(zone.height >= 46);
            compare(footer.mapToItem(view, 0, footer.height).y, height - 22);
        }
    }

    function test_backgroundGradient() {
        const background = findChild(view, "background");
        compare(background.startColor, KestrovaTheme.bg);
        compare(background.endColor, KestrovaTheme.bgWarm);
        compare(background.height, view.height);
    }

    function test_mirroredFromRightToLeft() {
        view.LayoutMirroring.enabled = true;
        view.LayoutMirroring.childrenInherit = true;
        waitForRendering(view);
        const left = item => item.mapToItem(view, 0, 0).x;
        const full = findChild(view, "fullLink");
        const coffee = findChild(view, "coffeeLink");
        compare(left(coffee), 22);
        compare(left(full) + full.width, 820 - 22);
        test.width = 1000;
        waitForRendering(view);
        compare(left(coffee), 22);
        compare(left(full) + full.width, 1000 - 22);
        test.width = 820;
        waitForRendering(view);
        compare(left(findChild(view, "preferencesButton")), 22);
        verify(findChild(view, "background").mirrored);
    }

    function test_makersLinkIsShortWhereTheFullOneDoesNotFit() {
        const footer = findChild(view, "footer");
        const full = findChild(footer, "fullLink");
        const compact = findChild(footer, "compactLink");
        verify(full.visible);
        verify(!compact.visible);
        test.width = 44 + full.implicitWidth + 100;
        tryCompare(compact, "visible", true);
        verify(!full.visible);
        compare(compact.text, "Kestrova");
    }

    function test_preferencesButton() {
        preferencesSpy.clear();
        preferencesSpy.target = view;
        const button = findChild(view, "preferencesButton");
        compare(button.symbol, "gearshape");
        compare(button.helpText, "Preferences");
        compare(button.Accessible.name, "Preferences");
        mouseClick(button);
        compare(preferencesSpy.count, 1);
    }

    function test_focusGoesFromTopToBottom() {
        const order = [];
        findChild(view, "preferencesButton").forceActiveFocus();
        zone.forceActiveFocus(Qt.TabFocusReason);
        verify(zone.visualFocus);
        let item = view.Window.activeFocusItem;
        for (let count = 0; count < 30; ++count) {
            order.push(item.mapToItem(view, 0, 0).y);
            keyClick(Qt.Key_Tab);
            item = view.Window.activeFocusItem;
            if (item === zone)
                break;
        }
        compare(item, zone, "Tab comes round");
        const wrap = order.findIndex((y, index) => index > 0 && y < order[index - 1] - 20);
        verify(wrap > 0);
        for (let index = wrap + 1; index < order.length; ++index)
            verify(order[index] >= order[index - 1] - 20);
    }

    function test_batchesAnnounceThemselves() {
        const announcement = findChild(view, "announcement");
        const said = [];
        announcement.visibleChanged.connect(() => {
            if (announcement.visible)
                said.push(announcement.text);
        });
        compare(announcement.Accessible.role, Accessible.AlertMessage);
        batches.dropPhotos(2);
        tryVerify(() => batches.begun.length === 2);
        showResults(0).addSuccess("photo-1.jpg", 2000000, 1500000);
        batches.letAllGo();
        tryVerify(() => batches.presenter.statusText === "Done");
        compare(said, ["Scanning for images...", "Optimizing 2 images with 2 workers...", "Done. Files: 1/1, Total Saved: 500 KB, Reduction: 25.0%"]);
        batches.presenter.loadDroppedFiles(["file:///notes.txt"]);
        tryVerify(() => said.length === 4);
        compare(said[3], "No supported image files found", "without the totals of another batch");
    }
}
