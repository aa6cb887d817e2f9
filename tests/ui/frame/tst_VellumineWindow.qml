import QtQuick
import QtTest
import Vellumine

Item {
    height: 10
    width: 10

    VellumineWindow {
        id: window

        height: 440
        title: "Vellumine"
        width: 820

        TextInput {
            id: inside

            focus: true
            y: 100
        }
    }

    SignalSpy {
        id: preferences

        signalName: "preferencesRequested"
        target: window
    }

    SignalSpy {
        id: quit

        signalName: "quitRequested"
        target: window
    }

    SignalSpy {
        id: moved

        signalName: "moveStarted"
    }

    SignalSpy {
        id: resized

        signalName: "resizeStarted"
    }

    TestCase {
        readonly property Item mover: findChild(window.contentItem, "mover")
        readonly property Item edges: findChild(window.contentItem, "edges")

        name: "VellumineWindow"
        when: windowShown

        function button(name) {
            return findChild(window.contentItem, name);
        }

        function init() {
            Motion.reducedMotion = true;
            window.showNormal();
            window.requestActivate();
            tryCompare(window, "active", true);
            for (const spy of [preferences, quit, moved, resized])
                spy.clear();
            moved.target = mover;
            resized.target = edges;
        }

        function cleanup() {
            GlobalMenu.present = false;
            wait(0); // until what is exported is gone, with its keys
        }

        function test_hasNoFrameOfTheDesktopsAndIsTransparent() {
            verify(window.flags & Qt.FramelessWindowHint);
            compare(window.color.a, 0);
            verify(window.cornerRadius > 0);
        }

        function test_buttonsHaveNames_data() {
            return [
                {tag: "menuButton", text: "Menu"},
                {tag: "minimizeButton", text: "Minimize"},
                {tag: "maximizeButton", text: "Maximize"},
                {tag: "closeButton", text: "Close"}
            ];
        }

        function test_buttonsHaveNames(row) {
            compare(button(row.tag).Accessible.name, row.text);
            verify(button(row.tag).contentItem.children[0].available);
        }

        function test_minimizes() {
            mouseClick(button("minimizeButton"));
            tryCompare(window, "visibility", Window.Minimized);
        }

        function test_maximizesAndRestores() {
            mouseClick(button("maximizeButton"));
            tryCompare(window, "maximized", true);
            compare(window.cornerRadius, 0);
            compare(button("maximizeButton").text, "Restore");
            verify(!edges.enabled);
            mouseClick(button("maximizeButton"));
            tryCompare(window, "maximized", false);
        }

        function test_doubleClickOnTheTitleBarMaximizes() {
            mouseDoubleClickSequence(mover, 400, 20);
            tryCompare(window, "maximized", true);
            mouseDoubleClickSequence(mover, 400, 20);
            tryCompare(window, "maximized", false);
        }

        function test_doubleClickBelowTheTitleBarDoesNothing() {
            mouseDoubleClickSequence(mover, 400, 300);
            verify(!window.maximized);
        }

        function test_closeHidesTheWindow() {
            mouseClick(button("closeButton"));
            tryCompare(window, "visible", false);
        }

        function test_dragOfTheBackgroundMovesOnce() {
            mousePress(mover, 300, 300);
            mouseMove(mover, 303, 302);
            compare(moved.count, 0, "5 pixels are no drag");
            mouseMove(mover, 303, 303);
            compare(moved.count, 1);
            mouseMove(mover, 340, 340);
            mouseMove(mover, 380, 340);
            compare(moved.count, 1, "the window manager has it now");
            mouseRelease(mover, 380, 340);
            mousePress(mover, 300, 300);
            mouseMove(mover, 320, 300);
            compare(moved.count, 2, "a new press moves again");
            mouseRelease(mover, 320, 300);
        }

        function test_motionWithoutAPressMovesNothing() {
            mouseMove(mover, 300, 300);
            mouseMove(mover, 340, 300);
            compare(moved.count, 0);
        }

        function test_dragOfAnEdgeResizes_data() {
            return [
                {tag: "left", x: 1, y: 200, edges: Qt.LeftEdge},
                {tag: "right", x: 818, y: 200, edges: Qt.RightEdge},
                {tag: "top", x: 400, y: 1, edges: Qt.TopEdge},
                {tag: "bottom", x: 400, y: 438, edges: Qt.BottomEdge},
                {tag: "corner", x: 818, y: 438, edges: Qt.BottomEdge | Qt.RightEdge}
            ];
        }

        function test_dragOfAnEdgeResizes(row) {
            mousePress(window.contentItem, row.x, row.y);
            mouseRelease(window.contentItem, row.x, row.y);
            compare(resized.count, 1);
            compare(resized.signalArguments[0][0], row.edges);
            compare(moved.count, 0);
        }

        function test_middleDoesNotResize() {
            mousePress(window.contentItem, 400, 200);
            mouseRelease(window.contentItem, 400, 200);
            compare(resized.count, 0);
        }

        function test_menuOffersTheThreeCommands() {
            const menu = findChild(window, "applicationMenu");
            mouseClick(button("menuButton"));
            tryCompare(menu, "opened", true);
            const texts = [];
            for (let index = 0; index < menu.count; ++index)
                texts.push(menu.itemAt(index).text ?? "");
            compare(texts, ["About Vellumine", "", "Preferences...", "", "Quit Vellumine"]);
            menu.itemAt(2).triggered();
            compare(preferences.count, 1);
            menu.itemAt(4).triggered();
            compare(quit.count, 1);
            menu.close();
        }

        function test_keysOfTheMenu() {
            keyClick(Qt.Key_Comma, Qt.ControlModifier);
            compare(preferences.count, 1);
            keyClick(Qt.Key_Q, Qt.ControlModifier);
            compare(quit.count, 1);
        }

        function exportedMenu() {
            return findChild(window.contentItem, "exportedMenu").item;
        }

        // The entries of the menu that a desktop with one menu bar for all programs gets.
        function exportedEntries() {
            GlobalMenu.present = true;
            tryVerify(() => exportedMenu());
            compare(exportedMenu().window, window);
            compare(exportedMenu().menus.length, 1);
            compare(exportedMenu().menus[0].title, "Vellumine");
            return exportedMenu().menus[0].items;
        }

        function test_exportsNoMenuWhereNobodyShowsIt() {
            verify(!exportedMenu());
            exportedEntries();
            GlobalMenu.present = false;
            tryVerify(() => !exportedMenu());
        }

        function test_exportsNoMenuOfAHiddenWindow() {
            exportedEntries();
            window.close();
            tryVerify(() => !exportedMenu());
            window.show();
            tryVerify(() => exportedMenu());
            compare(exportedMenu().menu.objectName, "applicationMenu");
        }

        function test_exportedEntriesAreThoseOfTheMenu() {
            const texts = [];
            const keys = [];
            const entries = exportedEntries();
            for (let index = 0; index < entries.length; ++index) {
                texts.push(entries[index].separator ? "-" : entries[index].text);
                keys.push(entries[index].shortcut);
            }
            compare(texts, ["About Vellumine", "-", "Preferences...", "-", "Quit Vellumine"]);
            compare(keys, ["", "", "Ctrl+,", "", "Ctrl+Q"]);
        }

        function test_exportedEntriesDoWhatThoseOfTheMenuDo() {
            const entries = exportedEntries();
            entries[2].triggered();
            compare([preferences.count, quit.count], [1, 0]);
            entries[4].triggered();
            compare([preferences.count, quit.count], [1, 1]);
            entries[0].triggered();
            tryVerify(() => findChild(window, "aboutCloseButton").activeFocus);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !findChild(window, "versionText").visible);
        }

        function test_keysOfTheExportedMenuWorkOnce() {
            exportedEntries();
            for (let times = 1; times <= 3; ++times) {
                keyClick(Qt.Key_Comma, Qt.ControlModifier);
                keyClick(Qt.Key_Q, Qt.ControlModifier);
                compare([preferences.count, quit.count], [times, times]);
            }
            GlobalMenu.present = false;
            wait(0);
            keyClick(Qt.Key_Comma, Qt.ControlModifier);
            keyClick(Qt.Key_Q, Qt.ControlModifier);
            compare([preferences.count, quit.count], [4, 4]);
        }

        function test_keysWaitBelowADialog_data() {
            return [{tag: "menuInTheTitleBar", exported: false}, {tag: "exportedMenu", exported: true}];
        }

        function test_keysWaitBelowADialog(row) {
            GlobalMenu.present = row.exported;
            tryVerify(() => !!exportedMenu() === row.exported);
            window.showAbout();
            tryVerify(() => findChild(window, "aboutCloseButton").activeFocus);
            keyClick(Qt.Key_Comma, Qt.ControlModifier);
            keyClick(Qt.Key_Q, Qt.ControlModifier);
            compare([preferences.count, quit.count], [0, 0]);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !findChild(window, "versionText").visible);
            keyClick(Qt.Key_Comma, Qt.ControlModifier);
            keyClick(Qt.Key_Q, Qt.ControlModifier);
            compare([preferences.count, quit.count], [1, 1]);
        }

        function test_aboutNamesTheVersion() {
            window.showAbout();
            const text = findChild(window, "versionText");
            verify(text);
            compare(text.text, ProductInfo.versionText);
            for (const name of ["licenceText", "librariesText"]) {
                const line = findChild(window, name);
                compare(line.text, ProductInfo[name]);
                verify(!line.truncated);
                verify(line.width <= 380);
            }
            tryVerify(() => findChild(window, "aboutCloseButton").activeFocus);
            keyClick(Qt.Key_Return);
            tryVerify(() => !text.visible);
        }

        function test_escapeClosesAbout() {
            window.showAbout();
            const text = findChild(window, "versionText");
            tryVerify(() => text.visible);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !text.visible);
        }
    }
}
