import QtQuick
import QtQuick.Templates as T
import QtTest
import Vellumine

Item {
    id: scene

    height: 300
    width: 400

    PlainButton {
        id: button

        contentItem: Text {
            text: "Button"
        }
        helpText: "What it does"
    }

    KestrovaPicker {
        id: picker

        model: ["Max Width", "Max Height"]
        x: 200
    }

    KestrovaMenu {
        id: menu

        KestrovaMenuItem {
            text: "Entry"
        }
    }

    KestrovaDialog {
        id: dialog

        contentItem: PlainButton {
            id: inDialog

            contentItem: Text {
                text: "Answer"
            }
            helpText: "What it does"
        }
    }

    TestCase {
        readonly property Item overlay: scene.T.Overlay.overlay

        name: "HelpText"
        when: windowShown

        function init() {
            Motion.reducedMotion = true;
            mouseMove(scene, 399, 299);
            tryVerify(() => !shown());
        }

        /// The help text lies over the window.
        function shown() {
            return Array.from(overlay.visibleChildren).some(item => item.contentItem?.text === "What it does");
        }

        function test_isShownWhileThePointerRests() {
            mouseMove(button, 5, 5);
            tryVerify(() => shown());
            mouseMove(scene, 399, 299);
            tryVerify(() => !shown());
        }

        function test_isShownInADialogThatIsOpen() {
            dialog.open();
            tryCompare(dialog, "opened", true);
            mouseMove(inDialog, 5, 5);
            tryVerify(() => shown());
            menu.open();
            verify(!shown(), "a menu over the dialog has the place");
            menu.close();
            dialog.close();
            tryVerify(() => !shown());
        }

        function test_isNotShownUnderAnythingThatIsOpen_data() {
            return [
                {tag: "menu", popup: menu},
                {tag: "dialog", popup: dialog},
                {tag: "picker", popup: picker.popup}
            ];
        }

        function test_isNotShownUnderAnythingThatIsOpen(row) {
            mouseMove(button, 5, 5);
            tryVerify(() => shown());
            row.popup.open();
            verify(!shown(), "it makes way");
            tryCompare(row.popup, "opened", true);
            verify(button.hovered);
            row.popup.close();
            tryVerify(() => shown(), 5000, "and comes back");
        }
    }
}
