import QtQuick
import Vellumine
import VellumineTest

// The chips with their first values, and with others where the room is short.
Rectangle {
    color: KestrovaTheme.bg
    height: 140
    width: 760

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft

    SettingsFixture {
        id: plain
    }

    SettingsFixture {
        id: other

        Component.onCompleted: {
            presenter.outputFormat = 1;
            presenter.resizeMode = 3;
            presenter.destinationMode = 1;
            presenter.removeMetadata = false;
            presenter.optimizeColorForSharing = false;
            storeFolder("/home/somebody/Pictures/A rather long name of a folder for the web");
        }
    }

    Column {
        anchors.fill: parent
        anchors.margins: 20
        spacing: 20

        SettingsChipGroup {
            settings: plain.presenter
            width: parent.width
        }

        SettingsChipGroup {
            settings: other.presenter
            width: 520
        }
    }
}
