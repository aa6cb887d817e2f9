import QtQuick
import Vellumine
import VellumineTest

// A comparison of which the split lies at 50 percent.
ComparisonWindow {
    presenter: fixture.presenter

    Component.onCompleted: presenter.setSplit(0.50)

    ComparisonFixture {
        id: fixture
    }
}
