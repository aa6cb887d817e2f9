import QtQuick
import Vellumine

// A compact button that shows one setting at a glance. With a menu it opens that, else it is `clicked`.
KestrovaButton {
    id: chip

    required property string systemName
    /// A KestrovaMenu, made when it is first opened.
    property Component menu: null
    /// The menu once it was opened.
    readonly property KestrovaMenu openMenu: loader.item as KestrovaMenu
    /// Longer texts, such as a folder's name, end in dots.
    property real maximumTextWidth: 170

    Accessible.role: menu ? Accessible.ButtonMenu : Accessible.Button
    bottomPadding: 4
    font.pixelSize: 11
    font.weight: Font.DemiBold
    leftPadding: 7
    rightPadding: 7
    spacing: 4
    topPadding: 4

    background: Rectangle {
        readonly property real strength: chip.down ? 3 : chip.hovered ? 2 : 1

        border.color: KestrovaTheme.faded(KestrovaTheme.copperBright, 0.14 * strength)
        border.width: 1
        color: KestrovaTheme.faded(KestrovaTheme.copperBright, 0.1 * strength)
        radius: height / 2

        FocusRing {
            radius: height / 2
            shown: chip.visualFocus
        }
    }
    contentItem: Row {
        spacing: chip.spacing

        SymbolImage {
            anchors.verticalCenter: parent.verticalCenter
            color: KestrovaTheme.copperBright
            name: chip.systemName
            size: 10
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            color: KestrovaTheme.creamMuted
            elide: Text.ElideMiddle
            font: chip.font
            maximumLineCount: 1
            text: chip.text
            textFormat: Text.PlainText
            width: Math.min(implicitWidth, chip.maximumTextWidth)
        }
    }

    Keys.onDownPressed: event => {
        if (menu)
            clicked();
        else
            event.accepted = false;
    }
    onClicked: {
        if (!menu)
            return;
        loader.active = true;
        openMenu.openBelow(chip);
    }

    Loader {
        id: loader

        active: false
        sourceComponent: chip.menu
    }
}
