import QtQuick
import Vellumine
import VellumineTest

// A comparison of pictures that are smaller than the names on them.
ComparisonWindow {
    height: minimumHeight
    presenter: fixture.presenter

    Component.onCompleted: fixture.makeFlat(96, 64)

    ComparisonFixture {
        id: fixture
    }
}
