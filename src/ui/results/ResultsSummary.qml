import QtQuick
import QtQuick.Layouts
import Vellumine

// Totals over the results: how many, how much, and how much of it all.
RowLayout {
    id: root

    required property ResultsSummaryPresenter summary

    spacing: 14

    SummaryMetric {
        Layout.fillWidth: false
        title: qsTr("Files")
        value: root.summary.filesText
    }

    SummaryDivider { }

    SummaryMetric {
        Layout.fillWidth: false
        title: root.summary.totalTitle
        value: root.summary.totalText
    }

    SummaryDivider { }

    SummaryMetric {
        Layout.fillWidth: false
        title: qsTr("Reduction")
        value: root.summary.reductionText
    }

    Item {
        Layout.fillWidth: true
    }

    component SummaryDivider: Rectangle {
        Layout.fillHeight: true
        Layout.maximumHeight: 28
        color: KestrovaTheme.faded(KestrovaTheme.cream, 0.2)
        implicitWidth: 1
    }
}
