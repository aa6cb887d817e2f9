import QtQuick
import QtQuick.Layouts
import Vellumine

// Name, version and maker of the program.
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
