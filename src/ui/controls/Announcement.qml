import QtQuick

// Has a screen reader say a text at once, wherever the focus is. Nothing is to be seen of it.
Item {
    id: announcement

    property string text

    function say(words) {
        // It speaks of an alert that appears, and not of one that changes.
        visible = false;
        text = words;
        visible = true;
    }

    Accessible.name: text
    Accessible.role: Accessible.AlertMessage
    visible: false
}
