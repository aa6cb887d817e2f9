import QtQuick
import QtQuick.Templates as T
import Vellumine

// The help text of a control, shown while the pointer rests on it and no menu or dialog lies over it. It is made only
// then.
Loader {
    id: help

    required property T.Control control
    property string text

    active: control.hovered && text.length > 0
    // The component may reach what is around it, which cannot be said to qmllint before Qt 6.5.
    // qmllint disable unqualified
    sourceComponent: T.ToolTip {
        id: tip

        readonly property Item overlay: T.Overlay.overlay
        /// Of all that lies over the control, if anything does, this is the only one.
        property bool alone: true

        /// Of what lies over the window, that which the item is in.
        function layerOf(item) {
            while (item && item.parent !== overlay)
                item = item.parent;
            return item;
        }

        function look() {
            const layers = Array.from(overlay.visibleChildren);
            const above = layers.slice(layers.indexOf(layerOf(help.control)) + 1);
            alone = above.every(layer => layer === contentItem.parent);
        }

        delay: 600
        horizontalPadding: 8
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
        margins: 6
        parent: help.control
        text: help.text
        timeout: 8000
        verticalPadding: 5
        visible: help.control.hovered && alone
        x: (help.control.width - width) / 2
        y: help.control.height + 6

        background: Rectangle {
            border.color: KestrovaTheme.faded(KestrovaTheme.cream, 0.2)
            color: KestrovaTheme.leatherDeep
            radius: 6
        }
        contentItem: Text {
            color: KestrovaTheme.cream
            font: TextStyle.subheadline
            text: tip.text
        }
        enter: Transition {
            NumberAnimation {
                duration: Motion.quick
                from: 0
                property: "opacity"
                to: 1
            }
        }

        Component.onCompleted: look()

        Connections {
            function onVisibleChildrenChanged() {
                tip.look();
            }

            target: tip.overlay
        }
    }
}
