import QtQuick
import QtQuick.Templates as T
import QtTest
import Vellumine
import VellumineTest

// The panels as they are drawn where the desktop has no folder dialog of its own.
Item {
    id: scene

    height: 500
    width: 720

    DialogFixture {
        id: questions
    }

    FolderPanels {
        panel: questions.folderPanel
    }

    Connections {
        id: next

        property var ask: null

        function onAnswered() {
            const ask = next.ask;
            next.ask = null;
            if (ask)
                ask();
        }

        target: questions
    }

    TestCase {
        name: "FolderPanels"
        when: windowShown

        function init() {
            questions.answers = [];
        }

        function cleanup() {
            while (questions.folderPanel.isShown) {
                tryVerify(() => button("Cancel"));
                const count = questions.answers.length;
                mouseClick(button("Cancel"));
                compare(questions.answers.length, count + 1);
            }
            tryVerify(() => !list());
        }

        function list() {
            return DrawnDialogs.item("folderDialogListView");
        }

        // Of the window that the dialog is drawn in.
        function button(text, item = list()?.Window.contentItem) {
            if (!item)
                return null;
            for (let index = 0; index < item.children.length; ++index) {
                const child = item.children[index];
                const found = child instanceof T.AbstractButton && child.text === text ? child : button(text, child);
                if (found)
                    return found;
            }
            return null;
        }

        function waitForPanel(message) {
            tryVerify(() => list() && DrawnDialogs.item("dialogTitleBarLabel").text === message);
            waitForRendering(list());
        }

        function ask(folder, message = "Where?") {
            questions.askFolder(message, folder, "Allow");
            waitForPanel(message);
        }

        function answerOf(act) {
            act();
            compare(questions.answers.length, 1);
            return questions.answers[0];
        }

        function subfolder(index) {
            tryVerify(() => list().itemAtIndex(index));
            return list().itemAtIndex(index);
        }

        function test_onePanelAfterTheOther() {
            const first = questions.makeFolder("first");
            const second = questions.makeFolder("second");
            questions.askFolder("First?", first, "Allow");
            questions.askFolder("Second?", second);
            waitForPanel("First?");
            mouseClick(button("Allow"));
            compare(questions.answers, [first.toString()]);
            waitForPanel("Second?");
            verify(!button("Allow"), "the label of the panel before is gone");
            mouseClick(button("Open"));
            compare(questions.answers, [first.toString(), second.toString()]);
            tryVerify(() => !list());
        }

        function test_aPanelThatTheAnswerAsksFor() {
            const second = questions.makeFolder("second");
            next.ask = () => questions.askFolder("Second?", second, "Allow");
            ask(questions.makeFolder("first"), "First?");
            mouseClick(button("Cancel"));
            waitForPanel("Second?");
            mouseClick(button("Allow"));
            compare(questions.answers, ["cancelled", second.toString()]);
        }

        function test_theProposedFolderIsTheAnswer_data() {
            return [
                {tag: "without subfolders", folder: "empty/folder", subfolders: []},
                {tag: "with subfolders", folder: "full/folder", subfolders: ["full/folder/a", "full/folder/b"]}
            ];
        }

        function test_theProposedFolderIsTheAnswer(row) {
            const folder = questions.makeFolder(row.folder);
            row.subfolders.forEach(name => questions.makeFolder(name));
            ask(folder);
            tryCompare(list(), "count", row.subfolders.length);
            compare(list().currentIndex, -1, "nothing looks selected");
            compare(answerOf(() => mouseClick(button("Allow"))), folder.toString());
        }

        function test_aSelectedSubfolderIsTheAnswer() {
            const subfolders = ["tree/a", "tree/b"].map(name => questions.makeFolder(name));
            for (let index = 0; index < 2; ++index) {
                questions.answers = [];
                ask(questions.makeFolder("tree"));
                mouseClick(subfolder(index));
                compare(list().currentIndex, index);
                compare(answerOf(() => mouseClick(button("Allow"))), subfolders[index].toString());
            }
        }

        function test_anEnteredSubfolderIsTheAnswer() {
            const inner = questions.makeFolder("outer/inner");
            questions.makeFolder("outer/inner/innermost");
            ask(questions.makeFolder("outer"));
            mouseDoubleClickSequence(subfolder(0));
            tryVerify(() => list().itemAtIndex(0)?.fileName === "innermost");
            compare(list().currentIndex, -1);
            compare(answerOf(() => mouseClick(button("Allow"))), inner.toString());
        }

        function test_theFolderAboveIsTheAnswer() {
            const outer = questions.makeFolder("up");
            ask(questions.makeFolder("up/inner"));
            keyClick(Qt.Key_Up, Qt.AltModifier);
            compare(list().currentIndex, -1);
            compare(answerOf(() => mouseClick(button("Allow"))), outer.toString());
        }

        function test_escapeCancels() {
            ask(questions.makeFolder("escape"));
            compare(answerOf(() => keyClick(Qt.Key_Escape)), "cancelled");
        }
    }
}
