import QtQuick
import Vellumine

// Says which side of the split this is.
Rectangle {
    id: label

    required property string text

    color: KestrovaTheme.faded(KestrovaTheme.leatherDeep, 0.78)
    implicitHeight: caption.implicitHeight + 2 * 4
    implicitWidth: caption.implicitWidth + 2 * 9
    radius: height / 2

    Text {
        id: caption

        anchors.centerIn: parent
        color: KestrovaTheme.cream
        font: TextStyle.captionStrong
        text: label.text
    }
}
