import QtQuick
import QtQuick.Layouts
import Vellumine

// The same part of a picture before and after, laid over each other.
FocusScope {
    id: view

    required property ComparisonPresenter presenter
    property real cornerRadius: 0
    // what the window's title bar covers
    property real topInset: 0

    implicitHeight: presenter.contentSize.height + topInset
    implicitWidth: presenter.contentSize.width

    WindowBackground {
        anchors.fill: parent
        mirrored: view.LayoutMirroring.enabled
        radius: view.cornerRadius
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 20
        anchors.topMargin: 20 + view.topInset
        spacing: 14

        RowLayout {
            Layout.fillWidth: true
            spacing: 24

            Column {
                Layout.alignment: Qt.AlignBaseline
                baselineOffset: heading.baselineOffset
                spacing: 2

                Text {
                    id: heading

                    Accessible.name: text
                    Accessible.role: Accessible.Heading
                    anchors.left: parent.left
                    color: KestrovaTheme.cream
                    font.bold: true
                    font.pixelSize: 15
                    objectName: "headingText"
                    text: qsTr("Before / After Review")
                }

                Text {
                    anchors.left: parent.left
                    color: KestrovaTheme.creamMuted
                    font: TextStyle.captionStrong
                    objectName: "sampleText"
                    text: qsTr("100% center sample")
                }
            }

            ColumnLayout {
                Layout.alignment: Qt.AlignBaseline
                Layout.fillWidth: true
                baselineOffset: before.baselineOffset
                spacing: 2

                FileNameText {
                    id: before

                    objectName: "sourceName"
                    text: view.presenter.sourceText
                }

                FileNameText {
                    objectName: "outputName"
                    text: view.presenter.outputText
                }
            }
        }

        ComparisonCanvas {
            Layout.fillHeight: true
            Layout.fillWidth: true
            Layout.minimumHeight: 256
            focus: true
            objectName: "canvas"
            presenter: view.presenter
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 22

            ReviewMetric {
                Layout.fillWidth: false
                objectName: "sourceSize"
                title: qsTr("Before")
                value: view.presenter.sourceSizeText
            }

            ReviewMetric {
                Layout.fillWidth: false
                objectName: "outputSize"
                title: qsTr("After")
                value: view.presenter.outputSizeText
            }

            Text {
                Layout.fillWidth: true
                color: KestrovaTheme.creamSubtle
                elide: Text.ElideRight
                font: TextStyle.caption
                horizontalAlignment: Text.AlignRight
                text: qsTr("Move the pointer")
            }
        }
    }

    component FileNameText: Text {
        Layout.fillWidth: true
        color: KestrovaTheme.creamMuted
        elide: Text.ElideMiddle
        font: TextStyle.captionStrong
        horizontalAlignment: Text.AlignRight
        maximumLineCount: 1
        textFormat: Text.PlainText
    }
}
