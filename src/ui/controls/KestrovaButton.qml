import QtQuick
import QtQuick.Templates as T

// What the buttons have in common: the pointer, Space, Return and a screen reader press them, and they may have a help
// text. Each brings its own background and content item.
T.AbstractButton {
    id: button

    property string helpText

    // A key that is held presses once.
    function pressByKey(event) {
        if (!event.isAutoRepeat)
            clicked();
    }

    Accessible.description: helpText === Accessible.name ? "" : helpText
    Accessible.name: text.length > 0 ? text : helpText
    Accessible.onPressAction: clicked()
    Accessible.role: Accessible.Button
    Keys.onEnterPressed: event => pressByKey(event)
    Keys.onReturnPressed: event => pressByKey(event)
    hoverEnabled: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding

    HelpText {
        control: button
        text: button.helpText
    }
}
