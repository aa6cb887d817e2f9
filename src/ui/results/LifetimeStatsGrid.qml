import QtQuick
import QtQuick.Layouts
import Vellumine

// All lifetime totals, in three columns of the same width. For light backgrounds.
GridLayout {
    id: grid

    required property StatsPresenter stats

    columnSpacing: 12
    columns: 3
    rowSpacing: 12

    Repeater {
        model: grid.stats.metrics

        LightMetric {
            required property lifetimeMetric modelData

            Layout.fillWidth: true
            Layout.minimumWidth: 120
            Layout.preferredWidth: 120
            title: modelData.title
            value: modelData.value
        }
    }
}
