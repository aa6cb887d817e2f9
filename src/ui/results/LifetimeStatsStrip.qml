import QtQuick
import QtQuick.Layouts
import Vellumine

// The lifetime totals in one line.
Rectangle {
    id: strip

    required property StatsPresenter stats

    Accessible.name: qsTr("Lifetime Stats")
    Accessible.role: Accessible.Grouping
    border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.12)
    border.width: 1
    color: KestrovaTheme.faded(KestrovaTheme.cream, 0.08)
    implicitHeight: line.implicitHeight + 2 * 8
    implicitWidth: line.implicitWidth + 2 * 12
    radius: height / 2

    RowLayout {
        id: line

        anchors.fill: parent
        anchors.bottomMargin: 8
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        anchors.topMargin: 8
        spacing: 10

        SymbolImage {
            color: KestrovaTheme.copperBright
            name: "chart.line.uptrend.xyaxis"
            size: 13
        }

        Total {
            objectName: "files"
            text: strip.stats.filesText
        }

        Total {
            objectName: "netSaved"
            text: strip.stats.netSavedText
        }

        Total {
            objectName: "best"
            text: strip.stats.bestText
            visible: text.length > 0
        }

        Item {
            Layout.fillWidth: true
        }
    }

    component Total: Text {
        Accessible.name: text
        Accessible.role: Accessible.StaticText
        color: KestrovaTheme.creamMuted
        font: TextStyle.captionStrong
        textFormat: Text.PlainText
    }
}
