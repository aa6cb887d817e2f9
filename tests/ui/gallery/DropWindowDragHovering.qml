import QtQuick

// A drag with files over the drop zone.
DropWindowStage {
    id: scene

    property bool ready: false

    Timer {
        interval: 1
        running: true

        onTriggered: {
            scene.drag.enterWithUris(scene.contentItem, 400, 200, ["file:///pictures/a.jpg"]);
            scene.ready = true;
        }
    }
}
