import QtQuick

// One result.
DropWindowStage {
    height: 650

    Component.onCompleted: {
        list.addSuccess("Sunset over the harbour.jpg", 5230004, 842000);
        totals.set(1, 1, 5230004, 842000, 4388004, 4388004);
    }
}
