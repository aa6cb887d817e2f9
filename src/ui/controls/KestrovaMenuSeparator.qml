import QtQuick
import QtQuick.Templates as T
import Vellumine

T.MenuSeparator {
    implicitHeight: 11
    implicitWidth: 40
    padding: 5

    contentItem: Rectangle {
        color: KestrovaTheme.faded(KestrovaTheme.cream, 0.14)
        implicitHeight: 1
    }
}
