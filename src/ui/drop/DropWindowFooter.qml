import QtQuick
import QtQuick.Layouts
import Vellumine

// The ways out: to the maker, to a newer version, to the donation page. The maker's link is short where its full form does not fit.
RowLayout {
    id: footer

    required property UpdatePresenter updates
    readonly property bool fullFormFits: full.implicitWidth + update.implicitWidth + coffee.implicitWidth + 2 * spacing <= width

    spacing: 14

    KestrovaLink {
        id: full

        objectName: "fullLink"
        visible: footer.fullFormFits
    }

    KestrovaLink {
        compact: true
        objectName: "compactLink"
        visible: !footer.fullFormFits
    }

    Item {
        Layout.fillWidth: true
    }

    UpdateStatusView {
        id: update

        updates: footer.updates
    }

    BuyMeACoffeeLink {
        id: coffee

        objectName: "coffeeLink"
    }
}
