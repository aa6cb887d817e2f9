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

        function test_aSecondClickClosesTheMenu() {
            const menu = findChild(window, "applicationMenu");
            mouseClick(button("menuButton"));
            tryCompare(menu, "opened", true);
            mouseClick(button("menuButton"));
            tryCompare(menu, "visible", false);
            mouseClick(button("menuButton"));
            tryCompare(menu, "opened", true);
            menu.close();
        }

        function test_keysOfTheMenu() {
            keyClick(Qt.Key_Comma, Qt.ControlModifier);
            compare(preferences.count, 1);
            keyClick(Qt.Key_Q, Qt.ControlModifier);
            compare(quit.count, 1);
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
