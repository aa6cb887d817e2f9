import QtQuick

// The check for updates failed.
DropWindowStage {
    Component.onCompleted: news.showFailed()
}
