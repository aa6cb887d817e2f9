import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    height: 10
    width: 10

    SettingsFixture {
        id: preferences
    }

    ProcessingFixture {
        id: batches
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

    DialogFixture {
        id: questions
    }

    Component {
        id: windowComponent

        DropWindow {
            folderPanel: questions.folderPanel
            overwritePrompt: questions.overwritePrompt
            processing: batches.presenter
            results: list.model
            settings: preferences.presenter
            stats: totals.presenter
            updates: news.presenter
        }
    }

    Component {
        id: otherComponent

        Window {
            height: 10
            width: 10
        }
    }

    TestCase {
        property Window other
        property DropWindow window

        name: "DropWindow"
        when: windowShown

        function init() {
            // Without a parent, as in the program: a window is not active because another one is.
            other = otherComponent.createObject(null);
            window = windowComponent.createObject(null);
        }

        function cleanup() {
            window.destroy();
            other.destroy();
        }

        function activate(shown) {
            shown.show();
            shown.requestActivate();
            tryCompare(shown, "active", true);
        }

        function test_aFolderThatWentElsewhereIsNotNamedAnyMore() {
            const chip = findChild(window.contentItem, "chips").chips[3];
            preferences.storeFolder("/pictures/web");
            preferences.presenter.destinationMode = 1;
            activate(window);
            compare(chip.text, "web");
            activate(other);
            preferences.setFoldersGone(true);
            activate(window);
            compare(chip.text, "Choose folder");
            activate(other);
            preferences.setFoldersGone(false);
            activate(window);
            compare(chip.text, "web");
        }
    }
}
