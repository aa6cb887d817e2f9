import QtQuick
import QtQuick.Templates as T
import Vellumine

// The rows. Only those in sight exist; scrolled out of it they are used again.
ListView {
    id: list

    required property ResultsListModel results

    function nearestRow(index) {
        return Math.max(0, Math.min(index, count - 1));
    }

    // A button of the row before gives the focus back first: it could not stop being a stop of the Tab key.
    function moveTo(index) {
        const button = Window.activeFocusItem;
        if (button !== list)
            button.focus = false;
        currentIndex = nearestRow(index);
    }

    // What is far away is not passed on the way.
    function jumpTo(index) {
        positionViewAtIndex(nearestRow(index), ListView.Contain);
        moveTo(index);
    }

    Accessible.name: qsTr("Results")
    Accessible.role: Accessible.List
    Keys.onPressed: event => {
        const page = Math.max(1, Math.floor(height / results.rowHeight));
        switch (event.key) {
        case Qt.Key_Up:
            moveTo(currentIndex - 1);
            break;
        case Qt.Key_Down:
            moveTo(currentIndex + 1);
            break;
        case Qt.Key_Home:
            jumpTo(0);
            break;
        case Qt.Key_End:
            jumpTo(count - 1);
            break;
        case Qt.Key_PageUp:
            jumpTo(currentIndex - page);
            break;
        case Qt.Key_PageDown:
            jumpTo(currentIndex + page);
            break;
        case Qt.Key_Enter:
        case Qt.Key_Return:
        case Qt.Key_Space:
            if (!event.isAutoRepeat)
                results.compare(currentIndex);
            break;
        default:
            return;
        }
        event.accepted = true;
    }
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    cacheBuffer: results.rowHeight
    clip: true
    currentIndex: -1
    highlightMoveDuration: Motion.quick
    keyNavigationEnabled: false
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
