import QtQuick
import Vellumine

// The preferences in a window of their own.
VellumineWindow {
    id: window

    required property SettingsPresenter settings
    required property StatsPresenter stats
    required property FolderPanelPresenter folderPanel

    height: 840
    minimumHeight: 780
    minimumWidth: 620
    objectName: "VelluminePreferencesWindow"
    title: qsTr("Preferences")
    width: 620

    // The stored folder may have gone or come back while the user was elsewhere.
    onActiveChanged: {
        if (active)
            settings.refresh();
    }

    PreferencesView {
        anchors.fill: parent
        cornerRadius: window.cornerRadius
        settings: window.settings
        stats: window.stats
    }

    FolderPanels {
        panel: window.folderPanel
    }
}
