import QtQuick
import Vellumine
import VellumineTest

// A comparison of which the split lies at 30 percent.
ComparisonWindow {
    presenter: fixture.presenter

    Component.onCompleted: presenter.setSplit(0.30)

    ComparisonFixture {
        id: fixture
    }
}
