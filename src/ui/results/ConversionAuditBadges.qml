import QtQuick
import QtQuick.Layouts
import Vellumine

// What the conversion did to the picture, as a row of tags. There are always as many tags as there
// can be badges, so that a row that is used again only changes their contents. Where the room is
// short, the longest texts give way.
RowLayout {
    id: root

    required property var badges

    spacing: 5
    visible: badges.length > 0

    Repeater {
        model: 5

        AuditBadge {
            required property int index
            readonly property bool isUsed: index < root.badges.length

            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth
            Layout.minimumWidth: minimumWidth
            systemName: isUsed ? root.badges[index].systemName : ""
            text: isUsed ? root.badges[index].text : ""
            visible: isUsed
        }
    }

    Item {
        Layout.fillWidth: true
    }
}
