import QtQuick
import Vellumine
import VellumineTest

// Why files could not be converted: in a few words, in many, and in more than there is room for.
Rectangle {
    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft
    color: KestrovaTheme.bg
    height: 340
    width: 720

    Component.onCompleted: {
        const places = "It would replace /home/somebody/Pictures/Winter/Dolomites at dawn.webp, which belongs to somebody else, in a folder where only its owner may do so. ";
        fixture.addFailure("Poster.png", places.repeat(4));
        fixture.addFailure("Dolomites at dawn.jpg", places);
        fixture.addUnreadable("half-downloaded.jpg");
    }

    ResultsFixture {
        id: fixture
    }

    ResultsList {
        anchors.fill: parent
        anchors.margins: 22
        results: fixture.model
    }
}
