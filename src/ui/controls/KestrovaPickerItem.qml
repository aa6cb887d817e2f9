import QtQuick
import QtQuick.Templates as T
import Vellumine

// One choice of a picker.
T.ItemDelegate {
    id: item

    required property int index
    required property T.ComboBox picker

    Accessible.name: text
    Accessible.onPressAction: clicked()
    Accessible.role: Accessible.ListItem
    checked: picker.currentIndex === index
    font: TextStyle.body
    highlighted: picker.highlightedIndex === index
    implicitHeight: 28
    leftPadding: 8
    rightPadding: 10
    text: picker.textAt(index)
    width: picker.popup.availableWidth

    background: Rectangle {
        color: item.highlighted || item.down ? KestrovaTheme.copper : "transparent"
        radius: 6
    }
    contentItem: Item {
        SymbolImage {
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            color: KestrovaTheme.cream
            name: "checkmark"
            size: 14
            visible: item.checked
        }

        Text {
            anchors.left: parent.left
            anchors.leftMargin: 22
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            color: KestrovaTheme.cream
            elide: Text.ElideRight
            font: item.font
            horizontalAlignment: Text.AlignLeft
            text: item.text
        }
    }
}
