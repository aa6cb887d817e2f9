import QtQuick
import QtQuick.Layouts
import Vellumine

// A title in capitals over a value.
ColumnLayout {
    id: metric

    required property string title
    required property string value
    property color titleColor: KestrovaTheme.copperBright
    property color valueColor: KestrovaTheme.cream
    property int valueSize: 13

    Accessible.name: title + ": " + value
    Accessible.role: Accessible.StaticText
    spacing: 1

    Text {
        Layout.fillWidth: true
        color: metric.titleColor
        elide: Text.ElideRight
        font.bold: true
        font.capitalization: Font.AllUppercase
        font.pixelSize: TextStyle.caption.pixelSize
        horizontalAlignment: Text.AlignLeft
        objectName: "title"
        text: metric.title
        textFormat: Text.PlainText
    }

    Text {
        Layout.fillWidth: true
        color: metric.valueColor
        elide: Text.ElideRight
        font.pixelSize: metric.valueSize
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignLeft
        objectName: "value"
        text: metric.value
        textFormat: Text.PlainText
    }
}
