import QtQuick
import Vellumine

// The folder panels of a window, one after the other. Each has a dialog of its own: Qt opens one that is used again where
// the last panel ended, and not at all while it closes.
Loader {
    id: panels

    required property FolderPanelPresenter panel

    // By its address: what dialogs need is loaded when the first one opens.
    function show() {
        if (panel.isShown)
            setSource("FolderPanelDialog.qml", {"panel": panel});
    }

    Component.onCompleted: show()

    Connections {
        // The next panel may be asked for by the answer to the one before, which is still closing then.
        function onAsked() {
            Qt.callLater(panels.show);
        }

        target: panels.panel
    }
}
