import QtQuick
import Vellumine
import VellumineTest

// A comparison of which the split lies at 85 percent.
ComparisonWindow {
    presenter: fixture.presenter

    Component.onCompleted: presenter.setSplit(0.85)

    ComparisonFixture {
        id: fixture
    }
}
