import QtQuick
import QtQuick.Templates as T
import Vellumine

// The rows. Only those in sight exist; scrolled out of it they are used again.
ListView {
    id: list

    required property ResultsListModel results

    Accessible.name: qsTr("Results")
    Accessible.role: Accessible.List
    Keys.onEnterPressed: results.compare(currentIndex)
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
        current: ListView.isCurrentItem && ListView.view.activeFocus
        width: ListView.view.width

        onCompareRequested: ListView.view.model.compare(index)
        onFocusReceived: button => {
            // A row that becomes the current one takes the focus.
            const reason = button.focusReason;
            ListView.view.currentIndex = index;
            ListView.view.positionViewAtIndex(index, ListView.Contain);
            button.forceActiveFocus(reason);
        }
        onRevealRequested: ListView.view.model.reveal(index)
    }

    // A button that was clicked has made its own row the current one, or is about to.
    onActiveFocusChanged: {
        if (Window.activeFocusItem === list && currentIndex < 0)
            currentIndex = indexAt(1, contentY);
    }
}
