import QtQuick
import QtQuick.Layouts
import Vellumine

// Rows on a light card under a title in small capitals.
Rectangle {
    id: section

    required property string title
    property real rowSpacing: 6
    default property alias content: rows.data

    Accessible.name: title
    Accessible.role: Accessible.Grouping
    border.color: KestrovaTheme.border
    color: KestrovaTheme.lightCard
    implicitHeight: column.implicitHeight + 16
    implicitWidth: column.implicitWidth + 28
    radius: 10

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.bottomMargin: 8
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        anchors.topMargin: 8
        spacing: 5

        Text {
            Accessible.ignored: true
            color: KestrovaTheme.copperStrong
            font.capitalization: Font.AllUppercase
            font.letterSpacing: 0.8
            font.pixelSize: 10
            font.weight: Font.Bold
            text: section.title
        }

        ColumnLayout {
            id: rows

            Layout.fillWidth: true
            spacing: section.rowSpacing
        }
    }
}
