import QtQuick
import QtTest
import Vellumine
import VellumineTest

// The main window's content over stand-ins, made anew for every test.
TestCase {
    id: testCase

    property ProcessingFixture batches
    property DropWindowView view
    readonly property Item zone: view ? findChild(view, "zone") : null

    height: 440
    visible: true
    when: windowShown
    width: 820

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

    function init() {
        Motion.reducedMotion = true;
        testCase.width = 820;
        testCase.height = 440;
        news.showIdle();
        batches = createTemporaryObject(batchesComponent, testCase);
        view = viewComponent.createObject(testCase, {
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
}
