import QtQuick
import Vellumine
import VellumineTest

PreferencesWindow {
    id: window

    height: 780
    folderPanel: questions.folderPanel
    settings: settings.presenter
    stats: totals.presenter

    SettingsFixture {
        id: settings
        Component.onCompleted: {
            presenter.outputFormat = 3;
            presenter.resizeMode = 3;
            presenter.destinationMode = 1;
            presenter.filenameSuffix = "-web";
            presenter.exitWhenComplete = true;
            storeFolder("/home/somebody/Pictures/A rather long name of a folder for the web/and another one below it");
        }
    }
    StatsFixture { id: totals }
    DialogFixture { id: questions }
}
