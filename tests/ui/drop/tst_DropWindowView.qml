import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    id: scene

    height: 440
    width: 820

    SyntheticDrag {
        id: drag
    }

    SettingsFixture {
        id: preferences
    }

    ResultsFixture {
        id: list
    }

    StatsFixture {
        id: totals
    }

    UpdateFixture {
        id: news
    }

    Component {
        id: viewComponent

        DropWindowView {
            anchors.fill: parent
            focus: true
            results: list.model
            settings: preferences.presenter
            stats: totals.presenter
            updates: news.presenter
        }
    }

    Component {
        id: batchesComponent

        ProcessingFixture {}
    }

    ResultsFixture {
        id: filledList
    }

    SignalSpy {
        id: preferencesSpy

        signalName: "preferencesRequested"
    }

    TestCase {
        id: test

        property ProcessingFixture batches
        property DropWindowView view
        readonly property Item zone: view ? findChild(view, "zone") : null
        readonly property Item fill: zone ? findChild(zone, "fill") : null
        readonly property Item border: zone ? findChild(zone, "border") : null

        name: "DropWindowView"
        when: windowShown

        function init() {
            Motion.reducedMotion = true;
            scene.width = 820;
            scene.height = 440;
            news.showIdle();
            batches = createTemporaryObject(batchesComponent, scene);
            view = viewComponent.createObject(scene, {
                processing: batches.presenter
            });
            verify(view);
            waitForRendering(view);
        }

        function cleanup() {
            // before what it shows
            view.destroy();
            wait(0);
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
            scene.width = 720;
            scene.height = 420;
            waitForRendering(view);
            verify(zone.height >= 170);
            const content = findChild(zone, "hint");
            const bottom = content.mapToItem(zone, 0, content.height).y;
            verify(bottom <= zone.height);
            verify(findChild(view, "footer").mapToItem(view, 0, 0).y < 420 - 22);
        }

        function test_backgroundGradient() {
            const background = findChild(view, "background");
            compare(background.startColor, KestrovaTheme.bg);
            compare(background.endColor, KestrovaTheme.bgWarm);
            compare(background.height, view.height);
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

        function test_makersLinkIsShortWhereTheFullOneDoesNotFit() {
            const footer = findChild(view, "footer");
            const full = findChild(footer, "fullLink");
            const compact = findChild(footer, "compactLink");
            verify(full.visible);
            verify(!compact.visible);
            scene.width = 44 + full.implicitWidth + 100;
            tryCompare(compact, "visible", true);
            verify(!full.visible);
            compare(compact.text, "Kestrova");
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
            scene.width = 1000;
            waitForRendering(view);
            compare(left(coffee), 22);
            compare(left(full) + full.width, 1000 - 22);
            scene.width = 820;
            waitForRendering(view);
            compare(left(findChild(view, "preferencesButton")), 22);
            verify(findChild(view, "background").mirrored);
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
            keyClick(Qt.Key_Escape);
            tryCompare(zone, "isChoosing", false);
            compare(batches.begun, [], "nothing was chosen");
        }

        function test_severalFilesAndFoldersAtOnce() {
            const files = ["a.jpg", "b.PNG", "c.heif", "notes.txt"].map(name => "file:///pictures/" + name);
            verify(drag.enterWithUris(zone, 50, 50, files));
            verify(drag.drop(zone, 50, 50));
            batches.letAllGo();
            tryVerify(() => batches.begun.length === 3);
            compare(Array.from(batches.begun).sort(), ["a.jpg", "b.PNG", "c.heif"]);
        }

        function test_pasteOfATextIsNothing() {
            batches.copyText("/pictures/copied.png");
            zone.forceActiveFocus();
            const before = batches.presenter.statusText;
            keyClick(Qt.Key_V, Qt.ControlModifier);
            compare(batches.presenter.statusText, before);
        }

        function test_pasteTakesCopiedFiles() {
            batches.copyUris(["file:///pictures/copied.png"]);
            zone.forceActiveFocus();
            keyClick(Qt.Key_V, Qt.ControlModifier);
            tryCompare(batches, "begun", ["copied.png"]);
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
            filledList.addSuccess("photo-1.jpg", 2000000, 1500000);
            view.results = filledList.model;
            batches.letAllGo();
            tryVerify(() => batches.presenter.statusText === "Done");
            compare(said, ["Scanning for images...", "Optimizing 2 images with 2 workers...", "Done. Files: 1/1, Total Saved: 500 KB, Reduction: 25.0%"]);
            batches.presenter.loadDroppedFiles(["file:///notes.txt"]);
            tryVerify(() => said.length === 4);
            compare(said[3], "No supported image files found", "without the totals of another batch");
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
    }
}
