import QtQuick

// The same on a screen that is too low for the list.
DropWindowStage {
    height: 640

    Component.onCompleted: {
        list.addMany(9);
        totals.set(1312, 1304, 9412000000, 2210000000, 7202000000, 44802456);
    }
}
