import QtQuick.Dialogs
import Vellumine

// The desktop's own dialog for files to convert.
FileDialog {
    id: dialog

    required property ProcessingPresenter processing

    fileMode: FileDialog.OpenFiles
    nameFilters: processing.nameFilters
    title: qsTr("Optimize Images")

    DrawnDialogDirection {
        isShown: dialog.visible
        listName: "fileDialogListView"
    }

    onAccepted: processing.loadDroppedFiles(selectedFiles)
}
