import QtQuick
import QtQuick.Layouts
import Vellumine

// Name, version, maker, licence and credits of the program.
KestrovaDialog {
    id: about

    title: qsTr("About Vellumine")

    contentItem: ColumnLayout {
        spacing: 6

        KestrovaLogoMark {
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredHeight: 64
            Layout.preferredWidth: 64
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 6
            color: KestrovaTheme.cream
            font: TextStyle.title2
            text: ProductInfo.name
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            color: KestrovaTheme.creamMuted
            font: TextStyle.subheadline
            objectName: "versionText"
            text: ProductInfo.versionText
        }

        KestrovaLink {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 6
            compact: false
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: 380
            Layout.topMargin: 6
            color: KestrovaTheme.creamMuted
            font: TextStyle.subheadline
            horizontalAlignment: Text.AlignHCenter
            objectName: "licenceText"
            text: ProductInfo.licenceText
            wrapMode: Text.Wrap
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: 380
            color: KestrovaTheme.creamMuted
            font: TextStyle.caption
            horizontalAlignment: Text.AlignHCenter
            objectName: "librariesText"
            text: ProductInfo.librariesText
            wrapMode: Text.Wrap
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: 380
            color: KestrovaTheme.creamMuted
            font: TextStyle.caption
            horizontalAlignment: Text.AlignHCenter
            objectName: "confinementText"
            text: about.visible ? ProductInfo.confinementText : ""
            visible: text !== ""
            wrapMode: Text.Wrap
        }

        DialogButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 12
            focus: true
            objectName: "aboutCloseButton"
            prominent: true
            text: qsTr("Close")

            onClicked: about.close()
        }
    }
}
