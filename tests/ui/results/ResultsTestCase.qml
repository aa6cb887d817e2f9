import QtQuick
import QtTest
import Vellumine
import VellumineTest

// The list of results over a stand-in, made anew for every test.
TestCase {
    id: testCase

    property ResultsFixture fixture
    property ResultsList list

    height: 760
    visible: true
    when: windowShown
    width: 776

    Component {
        id: fixtureComponent

        ResultsFixture {}
    }

    Component {
        id: listComponent

        ResultsList {
            width: testCase.width
        }
    }

    function init() {
        // outlives the list
        fixture = fixtureComponent.createObject(testCase);
        list = createTemporaryObject(listComponent, testCase, {results: fixture.model});
    }

    function find(name: string): Item {
        return findChild(list, name);
    }

    function view(): ListView {
        return find("resultsView") as ListView;
    }

    function row(index: int): Item {
        return view().itemAtIndex(index);
    }
}
