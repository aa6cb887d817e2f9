import QtQuick

// Asks for the folder of the outputs, on a desktop without a dialog of its own.
DropWindowStage {
    Component.onCompleted: Qt.callLater(() => questions.askFolder(qsTranslate("vellumine::SettingsPresenter", "Choose where converted images should be saved."), "file:///usr/share"))
}
