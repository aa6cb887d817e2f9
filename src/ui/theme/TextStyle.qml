pragma Singleton
import QtQuick

// The text styles, by the sizes of which views are laid out, in device independent pixels. The family is the desktop's.
QtObject {
    readonly property font title2: Qt.font({ pixelSize: 17, bold: true })
    readonly property font headline: Qt.font({ pixelSize: 13, weight: Font.DemiBold })
    readonly property font body: Qt.font({ pixelSize: 13 })
    readonly property font subheadline: Qt.font({ pixelSize: 11 })
    readonly property font subheadlineStrong: Qt.font({ pixelSize: 11, weight: Font.DemiBold })
    readonly property font caption: Qt.font({ pixelSize: 10 })
    readonly property font captionStrong: Qt.font({ pixelSize: 10, weight: Font.DemiBold })
}
