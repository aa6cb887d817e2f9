import QtQuick
import QtQuick.Dialogs
import Vellumine

// The desktop's own folder dialog, open for the panel that is shown now.
FolderDialog {
    id: dialog

    required property FolderPanelPresenter panel

    // Qt's selects the first subfolder of what it shows, and nothing where there is none. What it shows is the answer until
    // the user selects something in it.
    function selectWhatIsShown() {
        const list = DrawnDialogs.item("folderDialogListView");
        if (list) {
            list.currentIndex = -1;
            selectedFolder = currentFolder;
        }
    }

    DrawnDialogDirection {
        isShown: dialog.visible
        listName: "folderDialogListView"
    }

    Component.onCompleted: {
        title = panel.message;
        acceptLabel = panel.prompt;
        currentFolder = panel.folder;
        options = panel.dialogOptions;
        open();
        if (visible)
            selectWhatIsShown();
        else
            panel.cancel();
    }
    onAccepted: panel.choose(selectedFolder)
    onCurrentFolderChanged: {
        if (visible)
            selectWhatIsShown();
    }
    onRejected: panel.cancel()
}
