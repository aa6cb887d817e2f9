import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    id: scene

    height: 420
    width: 720

    DialogFixture {
        id: questions
    }

    OverwritePromptDialog {
        id: dialog

        prompt: questions.overwritePrompt
    }

    MouseArea {
        id: below

        property int clicks: 0

        anchors.fill: parent

        onClicked: ++clicks
    }

    TestCase {
        readonly property Item content: dialog.contentItem

        name: "OverwritePromptDialog"
        when: windowShown

        function init() {
            questions.answers = [];
            below.clicks = 0;
        }

        function cleanup() {
            questions.overwritePrompt.skip();
            tryCompare(dialog, "visible", false);
        }

        function ask(path = "/pictures/photo.webp") {
            questions.askOverwrite(path);
            tryCompare(dialog, "opened", true);
        }

        function test_texts() {
            ask();
            compare(findChild(content, "promptMessage").text, "Replace photo.webp?");
            compare(findChild(content, "promptText").text, "A file with this name already exists.");
            compare(findChild(content, "replaceButton").text, "Replace");
            compare(findChild(content, "skipButton").text, "Skip");
            verify(findChild(content, "replaceButton").mapToItem(scene, 0, 0).x < findChild(content, "skipButton").mapToItem(scene, 0, 0).x);
        }

        function test_replaceButton() {
            ask();
            mouseClick(findChild(content, "replaceButton"));
            compare(questions.answers, ["replace"]);
            tryCompare(dialog, "visible", false);
        }

        function test_skipButton() {
            ask();
            mouseClick(findChild(content, "skipButton"));
            compare(questions.answers, ["skip"]);
        }

        function test_returnIsReplace() {
            ask();
            tryVerify(() => findChild(content, "replaceButton").activeFocus);
            keyClick(Qt.Key_Return);
            compare(questions.answers, ["replace"]);
        }

        function test_returnOnSkipIsSkip() {
            ask();
            tryVerify(() => findChild(content, "replaceButton").activeFocus);
            keyClick(Qt.Key_Tab);
            keyClick(Qt.Key_Return);
            compare(questions.answers, ["skip"]);
        }

        function test_escapeIsSkip() {
            ask();
            keyClick(Qt.Key_Escape);
            compare(questions.answers, ["skip"]);
        }

        function test_clickBesideItDoesNothing() {
            ask();
            mouseClick(scene, 10, 10);
            compare(questions.answers, []);
            verify(dialog.opened);
            compare(below.clicks, 0, "the window below waits");
        }

        function test_nextQuestionFollowsTheAnswer() {
            ask("/pictures/a.webp");
            questions.overwritePrompt.replace();
            ask("/pictures/b.webp");
            compare(findChild(content, "promptMessage").text, "Replace b.webp?");
            mouseClick(findChild(content, "skipButton"));
            compare(questions.answers, ["replace", "skip"]);
        }

        function test_longNameStaysInTheWindow() {
            ask("/pictures/" + "a long name ".repeat(20) + ".webp");
            verify(dialog.x >= 0);
            verify(dialog.x + dialog.width <= scene.width);
            verify(dialog.y >= 0);
            verify(dialog.y + dialog.height <= scene.height);
        }

        function test_markupInANameIsText() {
            ask("/pictures/<b>photo<b>.webp");
            compare(findChild(content, "promptMessage").textFormat, Text.PlainText);
        }
    }
}
