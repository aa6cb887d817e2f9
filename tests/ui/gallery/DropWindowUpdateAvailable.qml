import QtQuick

// A newer version was found.
DropWindowStage {
    Component.onCompleted: news.showAvailable("1.4")
}
