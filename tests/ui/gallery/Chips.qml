import QtQuick
import Vellumine
import VellumineTest

Rectangle {
    id: scene

    width: 760
    height: 420
    color: KestrovaTheme.bg

    SettingsFixture { id: plain }
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
        x: 20; y: 20
        spacing: 20
        SettingsChipGroup { id: first; settings: plain.presenter }
        SettingsChipGroup { id: second; settings: other.presenter; width: 520 }
    }
    Timer {
        interval: 1; running: true
        onTriggered: first.chips[1].press()
    }
}
