import QtQml
import QtQuick.Dialogs
import Vellumine

// The desktop's own folder dialog, opened for each panel in turn.
FolderDialog {
    id: dialog

    required property FolderPanelPresenter panel
    property Connections requests: Connections {
        function onAsked() {
            dialog.show();
        }

        target: dialog.panel
    }

    function show() {
        title = panel.message;
        acceptLabel = panel.prompt;
        currentFolder = panel.folder;
        options = panel.dialogOptions;
        open();
    }

    Component.onCompleted: {
        if (panel.isShown)
            show();
    }
    onAccepted: panel.choose(selectedFolder)
    onRejected: panel.cancel()
}
