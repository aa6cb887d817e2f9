import QtQuick

// Nothing dropped yet.
DropWindowStage {
    Component.onCompleted: totals.set(0, 0, 0, 0, 0, 0)
}
