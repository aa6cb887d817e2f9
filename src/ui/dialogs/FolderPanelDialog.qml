import QtQml
import QtQuick.Dialogs
import Vellumine

// The desktop's own folder dialog, opened for each panel in turn.
FolderDialog {
    id: dialog

    required property FolderPanelPresenter panel
    property Connections requests: Connections {
        function onAsked() {
            dialog.title = dialog.panel.message;
            dialog.acceptLabel = dialog.panel.prompt;
            dialog.currentFolder = dialog.panel.folder;
            dialog.options = dialog.panel.dialogOptions;
            dialog.open();
        }

        target: dialog.panel
    }

    onAccepted: panel.choose(selectedFolder)
    onRejected: panel.cancel()
}
