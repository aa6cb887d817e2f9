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

    Badge {
        systemName: root.badges[0]?.systemName ?? ""
        text: root.badges[0]?.text ?? ""
    }

    Badge {
        systemName: root.badges[1]?.systemName ?? ""
        text: root.badges[1]?.text ?? ""
    }

    Badge {
        systemName: root.badges[2]?.systemName ?? ""
        text: root.badges[2]?.text ?? ""
    }

    Badge {
        systemName: root.badges[3]?.systemName ?? ""
        text: root.badges[3]?.text ?? ""
    }

    Badge {
        systemName: root.badges[4]?.systemName ?? ""
        text: root.badges[4]?.text ?? ""
    }

    Item {
        Layout.fillWidth: true
    }

    component Badge: AuditBadge {
        Layout.fillWidth: true
        Layout.maximumWidth: implicitWidth
        Layout.minimumWidth: minimumWidth
        visible: text.length > 0
    }
}
