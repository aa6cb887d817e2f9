import QtQuick
import Vellumine
import VellumineTest

PreferencesWindow {
    id: window

    folderPanel: questions.folderPanel
    settings: settings.presenter
    stats: totals.presenter

    SettingsFixture { id: settings }
    StatsFixture {
        id: totals
        Component.onCompleted: set(1234, 1200, 8123456789, 3123456789, 5000000000, 23456789)
    }
    DialogFixture { id: questions }
}
