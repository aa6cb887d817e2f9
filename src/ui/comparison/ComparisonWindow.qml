import QtQuick
import Vellumine

// The window of one comparison.
Window {
    id: window

    required property ComparisonPresenter presenter

    color: KestrovaTheme.bg
    height: presenter.contentSize.height
    minimumHeight: presenter.minimumSize.height
    minimumWidth: presenter.minimumSize.width
    objectName: "VellumineComparisonWindow"
    title: presenter.title
    width: presenter.contentSize.width

    ImageComparisonReviewView {
        anchors.fill: parent
        presenter: window.presenter
    }

    Shortcut {
        sequences: [StandardKey.Close, StandardKey.Cancel]

        onActivated: window.close()
    }
}
