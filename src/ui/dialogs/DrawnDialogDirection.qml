import QtQuick
import Vellumine

// Has a dialog that Qt draws run from right to left where the program does. Drawn in a window of its own it takes that from
// none of ours.
QtObject {
    required property bool isShown
    /// The name that Qt gives the list in the dialog.
    required property string listName
    readonly property Item dialogItem: isShown ? (DrawnDialogs.item(listName)?.parent ?? null) : null

    onDialogItemChanged: {
        if (!dialogItem)
            return;
        dialogItem.LayoutMirroring.childrenInherit = true;
        dialogItem.LayoutMirroring.enabled = Qt.binding(() => Application.layoutDirection === Qt.RightToLeft);
    }
}
