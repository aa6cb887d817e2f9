import QtQuick
import QtTest
import Vellumine

// The menu of a window where the desktop has one menu bar for all programs.
Item {
    height: 10
    width: 10

    VellumineWindow {
        id: window

        height: 440
        title: "Vellumine"
        width: 820
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

    TestCase {
        name: "ExportedMenu"
        when: windowShown

        function init() {
            Motion.reducedMotion = true;
            window.showNormal();
            window.requestActivate();
            tryCompare(window, "active", true);
            preferences.clear();
            quit.clear();
        }

        function cleanup() {
            GlobalMenu.present = false;
            wait(0); // until what is exported is gone, with its keys
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
    }
}
