import QtQuick
import Vellumine
import VellumineTest

Item {
    height: view.implicitHeight
    width: view.implicitWidth

    ComparisonFixture {
        id: fixture

        Component.onCompleted: presenter.setSplit(0.50)
    }

    ImageComparisonReviewView {
        id: view

        anchors.fill: parent
        presenter: fixture.presenter
    }
}
