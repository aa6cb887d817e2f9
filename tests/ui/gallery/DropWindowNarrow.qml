import QtQuick

// As small as the window gets, with an update.
DropWindowStage {
    height: 420
    width: 720

    Component.onCompleted: {
        news.showAvailable("2.4.1");
        preferences.storeFolder("/home/somebody/Pictures/A rather long name of a folder");
        preferences.presenter.destinationMode = 1;
        totals.set(1312, 1304, 9412000000, 2210000000, -7202000000, 44802456);
    }
}
