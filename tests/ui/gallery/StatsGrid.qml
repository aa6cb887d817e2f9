import QtQuick
import Vellumine
import VellumineTest

Rectangle {
    color: KestrovaTheme.lightCard
    height: 120
    width: 480

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft

    StatsFixture {
        id: stats

        Component.onCompleted: set(1312, 1304, 9412000000, 2210000000, 7202000000, 44802456)
    }

    LifetimeStatsGrid {
        anchors.fill: parent
        anchors.margins: 16
        stats: stats.presenter
    }
}
