import QtQuick
import QtQuick.Dialogs
import Vellumine

// The desktop's own folder dialog, open for the panel that is shown now.
FolderDialog {
    id: dialog

    required property FolderPanelPresenter panel
    // What lies over the window.
    required property Item overlay

    // The list of subfolders in the dialog that Qt draws where the desktop has none.
    function drawnList(item) {
        for (let index = 0; index < item.children.length; ++index) {
            const child = item.children[index];
            const found = child.objectName === "folderDialogListView" ? child : drawnList(child);
            if (found)
                return found;
        }
        return null;
    }

    // Qt's selects the first subfolder of what it shows, and nothing where there is none. What it shows is the answer until
    // the user selects something in it.
    function selectWhatIsShown() {
        const list = drawnList(overlay);
        if (list) {
            list.currentIndex = -1;
            selectedFolder = currentFolder;
        }
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
