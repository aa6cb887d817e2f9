import QtQuick
import Vellumine

// The window of one comparison.
VellumineWindow {
    id: window

    required property ComparisonPresenter presenter

    height: presenter.contentSize.height + titleBarHeight
    minimumHeight: presenter.minimumSize.height + titleBarHeight
    minimumWidth: presenter.minimumSize.width
    objectName: "VellumineComparisonWindow"
    title: presenter.title
    width: presenter.contentSize.width

    ImageComparisonReviewView {
        anchors.fill: parent
        cornerRadius: window.cornerRadius
        focus: true
        presenter: window.presenter
        topInset: window.titleBarHeight
    }

    Shortcut {
        sequences: [ShortcutTexts.cancelKeys]

        onActivated: window.close()
    }
}
