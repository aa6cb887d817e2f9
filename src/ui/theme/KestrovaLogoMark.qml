import QtQuick
import Vellumine

// The maker's mark, or a seal where the program carries none.
Item {
    property url logo: ProductInfo.logo
    readonly property bool showsLogo: String(logo).length > 0

    implicitHeight: 44
    implicitWidth: 44

    Image {
        anchors.fill: parent
        fillMode: Image.PreserveAspectFit
        objectName: "logo"
        source: parent.logo
        sourceSize.height: height
        sourceSize.width: width
        visible: parent.showsLogo
    }

    SymbolImage {
        anchors.fill: parent
        color: KestrovaTheme.copper
        name: "seal.fill"
        objectName: "seal"
        visible: !parent.showsLogo
    }
}
