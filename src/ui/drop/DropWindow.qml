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

    // By its address: what dialogs need is loaded when the first one opens.
    Loader {
        id: folderDialog

        function load() {
            if (!item)
                setSource("FolderPanelDialog.qml", {"panel": window.folderPanel});
        }

        Component.onCompleted: {
            if (window.folderPanel.isShown)
                load();
        }
    }

    Connections {
        function onAsked() {
            folderDialog.load();
        }

        target: window.folderPanel
    }
}
