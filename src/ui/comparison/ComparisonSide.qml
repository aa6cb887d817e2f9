import QtQuick
import Vellumine

// A picture in its place on the canvas, cut to one side of the split.
Item {
    id: side

    property alias picture: pixels.image
    required property size pictureSize
    required property real pictureX
    required property real pictureY

    clip: true

    PixelImage {
        id: pixels

        height: side.pictureSize.height
        width: side.pictureSize.width
        x: side.pictureX
        y: side.pictureY
    }
}
