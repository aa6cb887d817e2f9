import QtQuick
import QtTest
import Vellumine
import VellumineTest

// The preferences over stand-ins, made anew for every test.
TestCase {
    id: testCase

    property var view
    readonly property SettingsPresenter settings: view?.settings ?? null

    height: 840
    visible: true
    when: windowShown
    width: 620

    Component {
        id: scene

        Item {
            property alias fixture: fixture
            property alias totals: totals
            property alias preferences: preferences
            property SettingsPresenter settings: fixture.presenter

            anchors.fill: parent

            SettingsFixture {
                id: fixture
            }

            StatsFixture {
                id: totals
            }

            PreferencesView {
                id: preferences

                anchors.fill: parent
                settings: fixture.presenter
                stats: totals.presenter
            }
        }
    }

    function init() {
        Motion.reducedMotion = true;
        testCase.height = 840;
        view = createTemporaryObject(scene, testCase);
        waitForRendering(view);
    }

    function find(name: string): Item {
        return findChild(view.preferences, name);
    }

    function type(field, text) {
        field.forceActiveFocus(Qt.TabFocusReason);
        field.selectAll();
        for (const letter of text)
            keyClick(letter);
        if (text.length === 0)
            keyClick(Qt.Key_Delete);
    }
}
