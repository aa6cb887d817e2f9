import QtQuick
import QtQuick.Controls.Basic as Basic
import QtQuick.Templates as T
import Vellumine

// A menu that opens below the control that it belongs to. One that is opened by a key gives the focus back.
T.Menu {
    id: menu

    /// The control that a key has opened it from.
    property T.Control openedByKey
    /// The control that it opens below once it is gone.
    property T.Control nextControl

    // Their leading edges stand in one line. The control that it is open below closes it again. Newer versions of Qt open
    // no menu that still fades away.
    function openBelow(control) {
        if (exit.running) {
            nextControl = control;
            return;
        }
        if (visible && parent === control) {
            close();
            return;
        }
        openedByKey = control.visualFocus ? control : null;
        currentIndex = -1;
        popup(control, control.LayoutMirroring.enabled ? control.width - implicitWidth : 0, control.height + 4);
    }

    cascade: false
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
    contentWidth: {
        let widest = 160;
        for (let index = 0; index < count; ++index)
            widest = Math.max(widest, itemAt(index).implicitWidth);
        return widest;
    }
    implicitHeight: contentHeight + topPadding + bottomPadding
    implicitWidth: contentWidth + leftPadding + rightPadding
    margins: 8
    overlap: 1
    padding: 6

    background: Rectangle {
        border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.18)
        color: KestrovaTheme.leatherDeep
        radius: 10
    }
    contentItem: ListView {
        clip: true
        currentIndex: menu.currentIndex
        implicitHeight: contentHeight
        interactive: contentHeight > height
        keyNavigationEnabled: false
        model: menu.contentModel

        T.ScrollIndicator.vertical: Basic.ScrollIndicator {}
    }
    delegate: KestrovaMenuItem {}
    enter: Transition {
        NumberAnimation {
            duration: Motion.quick
            from: 0
            property: "opacity"
            to: 1
        }
    }
    exit: Transition {
        NumberAnimation {
            duration: Motion.quick
            property: "opacity"
            to: 0
        }
    }

    // What it opened, such as a dialog, keeps the focus. Newer versions of Qt have given it back by
    // then, which is not seen as the reason is none of the keyboard's.
    onClosed: {
        if (nextControl) {
            Qt.callLater(openBelow, nextControl);
            nextControl = null;
            return;
        }
        const window = openedByKey?.Window.window;
        if (window && [null, window.contentItem, openedByKey].includes(window.activeFocusItem)) {
            openedByKey.forceActiveFocus(Qt.TabFocusReason);
            openedByKey.focusReason = Qt.TabFocusReason;
        }
    }
}
