import QtQuick
import QtQuick.Controls.Basic as Basic
import QtQuick.Templates as T

// The choices of a picker, below it.
ListView {
    required property T.ComboBox picker

    clip: true
    currentIndex: picker.highlightedIndex
    highlightMoveDuration: 0
    implicitHeight: contentHeight
    model: picker.delegateModel

    T.ScrollIndicator.vertical: Basic.ScrollIndicator {}
}
