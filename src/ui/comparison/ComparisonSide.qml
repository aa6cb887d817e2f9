import QtQuick
import Vellumine

// A picture in its place on the canvas, cut to one side of the split.
Item {
    id: side

    required property picture picture
    required property size pictureSize
    required property real pictureX
    required property real pictureY

    clip: true

    PixelImage {
        height: side.pictureSize.height
        image: side.picture
        width: side.pictureSize.width
        x: side.pictureX
        y: side.pictureY
    }
}
