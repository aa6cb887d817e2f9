import QtQuick
import QtQuick.Templates as T
import Vellumine

// One line of text. On light cards set `light`.
T.TextField {
    id: field

    property bool light: false

    // The focus stays when the window is closed or the program ends, and yet what was typed until then counts.
    function finishEditing() {
        if (!activeFocus)
            return;
        Qt.inputMethod.commit();
        editingFinished();
    }

    // Without the focus a text that is too long shows its beginning. A window that is left for another one keeps both
    // its focus and the place in the text.
    function showBeginning() {
        if (!focus)
            cursorPosition = 0;
    }

    Accessible.name: placeholderText
    color: light ? KestrovaTheme.ink : KestrovaTheme.cream
    font: TextStyle.body
    implicitHeight: 28
    implicitWidth: 140
    leftPadding: 9
    opacity: enabled ? 1 : 0.5
    placeholderTextColor: light ? KestrovaTheme.mutedInk : KestrovaTheme.creamSubtle
    rightPadding: 9
    selectByMouse: true
    selectedTextColor: KestrovaTheme.cream
    selectionColor: KestrovaTheme.copper
    topPadding: 5
    bottomPadding: 5
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: field.activeFocus ? (field.light ? KestrovaTheme.copper : KestrovaTheme.copperBright) : KestrovaTheme.faded(field.light ? KestrovaTheme.copperStrong : KestrovaTheme.cream, field.hovered ? 0.5 : 0.3)
        border.width: field.activeFocus ? 2 : 1
        color: field.light ? KestrovaTheme.lightCardRaised : KestrovaTheme.leatherDeep
        radius: 6
    }

    onFocusChanged: showBeginning()
    onTextChanged: showBeginning()

    Text {
        anchors.fill: parent
        anchors.leftMargin: field.leftPadding
        anchors.rightMargin: field.rightPadding
        color: field.placeholderTextColor
        elide: Text.ElideRight
        font: field.font
        text: field.placeholderText
        verticalAlignment: Text.AlignVCenter
        visible: field.length === 0 && field.preeditText.length === 0
    }

    Connections {
        function onClosing() {
            field.finishEditing();
        }

        target: field.Window.window
    }

    Connections {
        function onAboutToQuit() {
            field.finishEditing();
        }

        target: Qt.application
    }
}
