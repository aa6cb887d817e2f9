import QtQuick

// The same where there is no quality to choose.
DropWindowStage {
    Component.onCompleted: {
        preferences.presenter.outputFormat = 1;
        Qt.callLater(() => openMenu(2));
    }
}
