import QtQuick
import Vellumine

// Asks for the folder of the outputs, on a desktop without a dialog of its own.
DropWindowStage {
    property bool asked: false
    property bool ready: false

    // What is in the folder is found out beside the program.
    function waitForFolders() {
        const list = DrawnDialogs.item("folderDialogListView");
        if (list)
            ready = Qt.binding(() => list.count > 0);
        else
            Qt.callLater(waitForFolders);
    }

    // in the middle of the window, which is laid out by then
    onActiveChanged: {
        if (asked)
            return;
        asked = true;
        questions.askFolder(qsTranslate("vellumine::SettingsPresenter", "Choose where converted images should be saved."), "file:///usr/share");
        waitForFolders();
    }
}
