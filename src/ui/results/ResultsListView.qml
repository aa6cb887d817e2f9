import QtQuick
import QtQuick.Templates as T
import Vellumine

// The rows. Only those in sight exist; scrolled out of it they are used again.
ListView {
    id: list

    required property ResultsListModel results

    function focusRow(row: int) {
        currentIndex = row;
        positionViewAtIndex(row, ListView.Contain);
    }

    Accessible.name: qsTr("Results")
    Accessible.role: Accessible.List
    Keys.onReturnPressed: results.compare(currentIndex)
    Keys.onSpacePressed: results.compare(currentIndex)
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    cacheBuffer: results.rowHeight
    clip: true
    currentIndex: -1
    highlightMoveDuration: Motion.quick
    keyNavigationEnabled: true
    model: results
    pixelAligned: true
    objectName: "resultsView"
    reuseItems: true

    T.ScrollBar.vertical: KestrovaScrollBar { }
    delegate: ResultRow {
        current: ListView.isCurrentItem && list.activeFocus
        height: list.results.rowHeight
        width: ListView.view.width

        onCompareRequested: list.results.compare(index)
        onFocusReceived: list.focusRow(index)
        onRevealRequested: list.results.reveal(index)
    }

    onActiveFocusChanged: {
        if (activeFocus && currentIndex < 0)
            currentIndex = indexAt(1, contentY);
    }
}
