import QtQuick
import Vellumine

// The main window.
VellumineWindow {
    id: window

    required property SettingsPresenter settings
    required property ProcessingPresenter processing
    required property ResultsListModel results
    required property StatsPresenter stats
    required property UpdatePresenter updates
    required property OverwritePromptPresenter overwritePrompt
    required property FolderPanelPresenter folderPanel

    height: 440
    minimumHeight: 420
    minimumWidth: 720
    objectName: "VellumineMainWindow"
    title: qsTr("Vellumine")
    width: 820

    // The stored folder may have gone or come back while the user was elsewhere.
    onActiveChanged: {
        if (active)
            settings.refresh();
    }

    DropWindowView {
        anchors.fill: parent
        cornerRadius: window.cornerRadius
        focus: true
        processing: window.processing
        results: window.results
        settings: window.settings
        stats: window.stats
        updates: window.updates

        onPreferencesRequested: window.preferencesRequested()
    }

    OverwritePromptDialog {
        cornerRadius: window.cornerRadius
        prompt: window.overwritePrompt
    }

    FolderPanels {
        panel: window.folderPanel
    }
}
