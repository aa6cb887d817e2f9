import QtQuick
import Vellumine
import VellumineTest

// The main window with stand-ins for all that it shows; every scene of it begins here.
DropWindow {
    id: stage

    property alias batches: batches
    property alias drag: drag
    property alias list: list
    property alias questions: questions
    property alias preferences: preferences
    property alias totals: totals
    property alias news: news

    function itemNamed(name, parent) {
        for (let index = 0; index < parent.children.length; ++index) {
            const child = parent.children[index];
            const found = child.objectName === name ? child : itemNamed(name, child);
            if (found)
                return found;
        }
        return null;
    }

    function openMenu(chip) {
        itemNamed("chips", contentItem).chips[chip].clicked();
    }

    folderPanel: questions.folderPanel
    overwritePrompt: questions.overwritePrompt
    processing: batches.presenter
    results: list.model
    settings: preferences.presenter
    stats: totals.presenter
    updates: news.presenter
    visible: true

    readonly property list<QtObject> fixtures: [
        ProcessingFixture {
            id: batches
        },
        ResultsFixture {
            id: list
        },
        SettingsFixture {
            id: preferences
        },
        StatsFixture {
            id: totals
        },
        UpdateFixture {
            id: news
        },
        DialogFixture {
            id: questions
        },
        SyntheticDrag {
            id: drag
        }
    ]
}
