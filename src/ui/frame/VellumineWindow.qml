import QtQuick
import Vellumine

// A window that draws its own frame, dark whatever the desktop's theme. Its children fill it and lie under the title bar;
// they paint their own background, rounded by `cornerRadius`.
Window {
    id: window

    default property alias content: contents.data
    readonly property bool maximized: visibility === Window.Maximized || visibility === Window.FullScreen
    readonly property real cornerRadius: maximized || !WindowCorners.rounded ? 0 : 12
    readonly property real titleBarHeight: titleBar.height

    signal preferencesRequested
    signal quitRequested

    function toggleMaximized() {
        if (maximized)
            showNormal();
        else
            showMaximized();
    }

    function showAbout() {
        about.open();
    }

    function showMenu() {
        menu.openBelow(titleBar.menuButton);
    }

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    color: "transparent"
    // Of the file dialogs that Qt draws where the desktop has none. They are light: the path in them is on white, whatever
    // the palette.
    palette {
        base: KestrovaTheme.lightCardRaised
        button: KestrovaTheme.mixed(KestrovaTheme.lightCard, KestrovaTheme.copper, 0.2)
        buttonText: KestrovaTheme.ink
        dark: KestrovaTheme.copperStrong
        highlight: KestrovaTheme.mixed(KestrovaTheme.lightCard, KestrovaTheme.copperBright, 0.6)
        highlightedText: KestrovaTheme.ink
        light: KestrovaTheme.lightCard
        mid: KestrovaTheme.copper
        midlight: KestrovaTheme.mixed(KestrovaTheme.lightCard, KestrovaTheme.copper, 0.3)
        placeholderText: KestrovaTheme.mutedInk
        text: KestrovaTheme.ink
        window: KestrovaTheme.lightCardRaised
        windowText: KestrovaTheme.ink
    }
    flags: Qt.Window | Qt.FramelessWindowHint

    WindowMover {
        anchors.fill: parent
        objectName: "mover"

        onDoubleClicked: position => {
            if (position.y < window.titleBarHeight)
                window.toggleMaximized();
        }
    }

    FocusScope {
        id: contents

        anchors.fill: parent
        focus: true
    }

    TitleBar {
        id: titleBar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        maximized: window.maximized

        onCloseRequested: window.close()
        onMaximizeRequested: window.toggleMaximized()
        onMenuRequested: window.showMenu()
        onMinimizeRequested: window.showMinimized()
    }

    Rectangle {
        anchors.fill: parent
        border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.16)
        border.width: 1
        color: "transparent"
        radius: window.cornerRadius
        visible: !window.maximized
    }

    WindowEdges {
        anchors.fill: parent
        enabled: !window.maximized
        objectName: "edges"
    }

    ApplicationMenu {
        id: menu

        objectName: "applicationMenu"

        onAboutChosen: window.showAbout()
        onPreferencesChosen: window.preferencesRequested()
        onQuitChosen: window.quitRequested()
    }

    // By its address: what it needs is loaded where it has a place. A window that is shown again is a new one for the
    // desktop.
    Loader {
        id: exportedMenu

        active: GlobalMenu.present && window.visible
        objectName: "exportedMenu"

        Component.onCompleted: setSource("ExportedMenu.qml", {"menu": menu, "window": window})
    }

    AboutDialog {
        id: about

        cornerRadius: window.cornerRadius
    }

    // An exported entry takes its keys itself, and keys that two take are nobody's.
    Shortcut {
        enabled: !exportedMenu.item
        sequences: [ShortcutTexts.preferencesKeys]

        onActivated: window.preferencesRequested()
    }

    Shortcut {
        enabled: !exportedMenu.item
        sequences: [ShortcutTexts.quitKeys]

        onActivated: window.quitRequested()
    }

    Shortcut {
        sequences: [ShortcutTexts.closeKeys]

        onActivated: window.close()
    }
}
