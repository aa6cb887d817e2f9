import QtQuick
import QtQuick.Layouts
import Vellumine

// What the conversions did: a summary over a list that shows eight rows at most and scrolls beyond.
// Given less room than it asks for, the list scrolls earlier. Without results there is nothing.
ColumnLayout {
    id: root

    required property ResultsListModel results
    // with one row in sight
    readonly property real leastHeight: implicitHeight - results.listHeight + results.rowHeight

    spacing: 10
    visible: results.count > 0

    ResultsSummary {
        Layout.fillWidth: true
        summary: root.results.summary
    }

    Rectangle {
        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.maximumHeight: root.results.listHeight
        Layout.minimumHeight: root.results.rowHeight
        Layout.preferredHeight: root.results.listHeight
        border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.16)
        border.width: 1
        color: KestrovaTheme.faded(KestrovaTheme.leatherRaised, 0.82)
        objectName: "scrollingArea"
        radius: 8

        ResultsListView {
            anchors.fill: parent
            results: root.results
        }
    }
}
