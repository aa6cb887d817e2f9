import QtQuick
import Vellumine
import VellumineTest

ResultsTestCase {
    name: "ResultsList"

    SyntheticKeys {
        id: keys
    }

    function test_withoutResultsThereIsNothing() {
        verify(!list.visible);
        fixture.addSuccess("a.jpg", 2000000, 1500000);
        verify(list.visible);
    }

    function test_isAsHighAsItsRowsUpToEight_data() {
        return [
            {tag: "one", count: 1, height: 76},
            {tag: "three", count: 3, height: 228},
            {tag: "eight", count: 8, height: 608},
            {tag: "many", count: 30, height: 608}
        ];
    }

    function test_isAsHighAsItsRowsUpToEight(data) {
        fixture.addMany(data.count);
        waitForRendering(list);
        compare(find("scrollingArea").height, data.height);
        compare(row(0).height, 76);
    }

    function test_scrollsEarlierWhereThereIsLessRoom() {
        fixture.addMany(8);
        list.height = 300;
        waitForRendering(list);
        verify(find("scrollingArea").height < 300);
        verify(view().contentHeight > view().height);
    }

    function test_looksAsItShould() {
        fixture.addMany(2);
        const area = find("scrollingArea");
        compare(area.radius, 8);
        fuzzyCompare(area.color, KestrovaTheme.faded(KestrovaTheme.leatherRaised, 0.82), 1);
        compare(area.border.width, 1);
        fuzzyCompare(area.border.color, KestrovaTheme.faded(KestrovaTheme.cream, 0.16), 1);
        waitForRendering(list);
        fuzzyCompare(findChild(row(0), "divider").color, KestrovaTheme.faded(KestrovaTheme.cream, 0.1), 1);
        verify(findChild(row(0), "divider").visible);
        verify(!findChild(row(1), "divider").visible);
    }

    function test_theKeyboardReachesEveryRow() {
        fixture.addMany(20);
        waitForRendering(list);
        view().forceActiveFocus(Qt.TabFocusReason);
        compare(view().currentIndex, 0);
        for (let press = 0; press < 12; ++press)
            keyClick(Qt.Key_Down);
        compare(view().currentIndex, 12);
        tryVerify(() => row(12) !== null && row(12).y >= view().contentY && row(12).y + 76 <= view().contentY + view().height);
        keyClick(Qt.Key_Return);
        compare(fixture.compared.length, 1);
    }

    function test_keysGoFarInOneStep() {
        fixture.addMany(2000);
        waitForRendering(list);
        view().forceActiveFocus(Qt.TabFocusReason);
        const inSight = index => row(index) !== null && row(index).y >= view().contentY && row(index).y + 76 <= view().contentY + view().height;
        const steps = [[Qt.Key_End, 1999], [Qt.Key_PageUp, 1991], [Qt.Key_PageDown, 1999], [Qt.Key_PageDown, 1999], [Qt.Key_Home, 0], [Qt.Key_PageUp, 0], [Qt.Key_PageDown, 8]];
        for (const [key, index] of steps) {
            keyClick(key);
            compare(view().currentIndex, index);
            verify(inSight(index), index + " without a journey");
        }
    }

    function test_returnAndEnterDoWhatHasTheFocus_data() {
        return [
            {tag: "the row", tabs: 0, compared: 1, revealed: 0},
            {tag: "the row's comparison", tabs: 1, compared: 1, revealed: 0},
            {tag: "the row's file", tabs: 2, compared: 0, revealed: 1}
        ];
    }

    function test_returnAndEnterDoWhatHasTheFocus(data) {
        fixture.addMany(2);
        waitForRendering(list);
        view().forceActiveFocus(Qt.TabFocusReason);
        for (let press = 0; press < data.tabs; ++press)
            keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Return);
        compare([fixture.compared.length, fixture.revealed.length], [data.compared, data.revealed]);
        keyClick(Qt.Key_Enter);
        compare([fixture.compared.length, fixture.revealed.length], [2 * data.compared, 2 * data.revealed]);
    }

    function test_returnThatIsHeldComparesOnce() {
        fixture.addMany(2);
        waitForRendering(list);
        view().forceActiveFocus(Qt.TabFocusReason);
        keys.hold(list, Qt.Key_Return, 3);
        compare(fixture.compared.length, 1);
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Tab);
        keys.hold(list, Qt.Key_Return, 3);
        compare([fixture.compared.length, fixture.revealed.length], [1, 1]);
    }

    function test_anArrowThatIsHeldGoesOn() {
        fixture.addMany(6);
        waitForRendering(list);
        view().forceActiveFocus(Qt.TabFocusReason);
        keys.hold(list, Qt.Key_Down, 3);
        compare(view().currentIndex, 4);
    }

    function test_returnAfterAClickOnAButtonDoesTheSameAgain() {
        fixture.addMany(2);
        waitForRendering(list);
        const button = findChild(row(1), "reveal");
        mouseClick(button);
        compare(view().currentIndex, 1);
        verify(button.activeFocus);
        verify(!button.visualFocus);
        keyClick(Qt.Key_Return);
        compare(fixture.revealed.length, 2);
        compare(fixture.compared.length, 0);
    }

    function test_tabGoesThroughTheButtonsOfTheCurrentRowAlone() {
        fixture.addMany(20);
        waitForRendering(list);
        view().forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Tab);
        verify(findChild(row(1), "compare").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(row(1), "reveal").activeFocus);
        keyClick(Qt.Key_Tab);
        for (let index = 0; index < 8; ++index)
            verify(!findChild(row(index), "compare").activeFocus);
    }

    function test_tabLeavesTheButtonsOfARowThatIsLeft_data() {
        return [{tag: "by the arrow", key: Qt.Key_Up}, {tag: "by Home", key: Qt.Key_Home}];
    }

    function test_tabLeavesTheButtonsOfARowThatIsLeft(data) {
        fixture.addMany(4);
        waitForRendering(list);
        view().forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Tab);
        verify(findChild(row(1), "compare").activeFocus);
        keyClick(data.key);
        compare(view().currentIndex, 0);
        verify(row(0).current);
        compare(findChild(row(1), "compare").focusPolicy, Qt.ClickFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(row(0), "compare").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(row(0), "reveal").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(!findChild(row(1), "compare").activeFocus);
    }

    function test_onlyRowsInSightExist() {
        fixture.addMany(2000);
        waitForRendering(list);
        let rows = 0;
        for (const child of Array.from(view().contentItem.children)) {
            if (child.fileName !== undefined)
                ++rows;
        }
        verify(rows >= 8 && rows < 40, "" + rows);
    }

    function test_aNewResultComesIntoSightAtTheTop() {
        fixture.addMany(20);
        waitForRendering(list);
        fixture.addSuccess("newest.jpg", 2, 1);
        waitForRendering(list);
        verify(view().atYBeginning);
        compare(row(0).mapToItem(list, 0, 0).y, find("scrollingArea").y);
        compare(findChild(row(0), "fileName").text, "newest.jpg");
    }

    function test_aNewResultLeavesAScrolledListWhereItIs() {
        fixture.addMany(40);
        waitForRendering(list);
        view().positionViewAtIndex(20, ListView.Beginning);
        const name = findChild(row(20), "fileName").text;
        const before = row(20).mapToItem(list, 0, 0).y;
        fixture.addSuccess("newest.jpg", 2, 1);
        waitForRendering(list);
        compare(findChild(row(21), "fileName").text, name);
        compare(row(21).mapToItem(list, 0, 0).y, before);
    }
}
