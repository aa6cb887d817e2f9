import Vellumine

// The one menu of the program.
KestrovaMenu {
    id: menu

    signal aboutChosen
    signal preferencesChosen
    signal quitChosen

    KestrovaMenuItem {
        objectName: "aboutItem"
        text: qsTr("About Vellumine")

        onTriggered: menu.aboutChosen()
    }

    KestrovaMenuSeparator {}

    KestrovaMenuItem {
        objectName: "preferencesItem"
        shortcutText: ShortcutTexts.preferences
        text: qsTr("Preferences...")

        onTriggered: menu.preferencesChosen()
    }

    KestrovaMenuSeparator {}

    KestrovaMenuItem {
        objectName: "quitItem"
        shortcutText: ShortcutTexts.quit
        text: qsTr("Quit Vellumine")

        onTriggered: menu.quitChosen()
    }
}
