import QtQuick
import Vellumine

Rectangle {
    width: 240
    height: 80
    color: KestrovaTheme.bg

    Row {
        anchors.centerIn: parent
        spacing: 12

        Repeater {
            model: [16, 24, 44]

            SymbolImage {
                required property real modelData

                name: "seal.fill"
                color: KestrovaTheme.copperBright
                size: modelData
            }
        }
    }
}
