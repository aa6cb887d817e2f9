import QtQuick
import QtQuick.Layouts
import Vellumine

// A label in a column of its own, and the control that it names behind it.
RowLayout {
    id: row

    required property string label
    default property alias content: controls.data

    Layout.fillWidth: true
    spacing: 14

    Text {
        Accessible.ignored: true
        Layout.preferredWidth: 112
        color: row.enabled ? KestrovaTheme.ink : KestrovaTheme.faded(KestrovaTheme.ink, 0.5)
        elide: Text.ElideRight
        font: TextStyle.headline
        horizontalAlignment: Text.AlignLeft
        text: row.label
    }

    RowLayout {
        id: controls

        Layout.fillWidth: true
        spacing: 8
    }
}
