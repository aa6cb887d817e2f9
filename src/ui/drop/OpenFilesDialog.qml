import QtQuick.Dialogs
import Vellumine

// The desktop's own dialog for files to convert.
FileDialog {
    required property ProcessingPresenter processing

    fileMode: FileDialog.OpenFiles
    nameFilters: processing.nameFilters
    title: qsTr("Optimize Images")

    onAccepted: processing.loadDroppedFiles(selectedFiles)
}
