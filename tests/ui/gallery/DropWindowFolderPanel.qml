import QtQuick

// Asks for the folder of the outputs, on a desktop without a dialog of its own.
DropWindowStage {
    property bool ready: false

    // in the middle of the window, which is laid out by then
    onActiveChanged: {
        if (ready)
            return;
        questions.askFolder(qsTranslate("vellumine::SettingsPresenter", "Choose where converted images should be saved."), "file:///usr/share");
        ready = true;
    }
}
