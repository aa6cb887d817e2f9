import QtQuick
import Vellumine

// What a window manager would draw: the application menu at the leading side, the window's buttons at the trailing one.
Item {
    id: bar

    required property bool maximized
    property alias menuButton: menuButton

    signal menuRequested
    signal minimizeRequested
    signal maximizeRequested
    signal closeRequested

    implicitHeight: 40

    TitleBarButton {
        id: menuButton

        Accessible.role: Accessible.ButtonMenu
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        objectName: "menuButton"
        symbol: "line.3.horizontal"
        text: qsTr("Menu")

        onClicked: bar.menuRequested()
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        TitleBarButton {
            objectName: "minimizeButton"
            symbol: "minus"
            text: qsTr("Minimize")

            onClicked: bar.minimizeRequested()
        }

        TitleBarButton {
            objectName: "maximizeButton"
            symbol: bar.maximized ? "square.on.square" : "square"
            text: bar.maximized ? qsTr("Restore") : qsTr("Maximize")

            onClicked: bar.maximizeRequested()
        }

        TitleBarButton {
            hoverColor: KestrovaTheme.copper
            objectName: "closeButton"
            pressedColor: KestrovaTheme.copperStrong
            symbol: "xmark"
            text: qsTr("Close")

            onClicked: bar.closeRequested()
        }
    }
}
