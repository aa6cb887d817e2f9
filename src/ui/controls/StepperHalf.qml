import QtQuick
import QtQuick.Templates as T
import Vellumine

// The upper or lower button of a stepper, its parent.
T.AbstractButton {
    id: half

    required property string symbol
    property bool light: false

    Accessible.ignored: true
    autoRepeat: true
    focusPolicy: Qt.NoFocus
    height: parent.height / 2
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4
    padding: 1
    width: parent.width

    background: Rectangle {
        color: half.down ? KestrovaTheme.copper : half.hovered ? KestrovaTheme.faded(KestrovaTheme.copper, 0.3) : "transparent"
        radius: 5
    }
    contentItem: SymbolImage {
        color: half.light && !half.down ? KestrovaTheme.ink : KestrovaTheme.cream
        name: half.symbol
        size: 10
    }
}
