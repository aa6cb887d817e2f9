import QtQuick
import Vellumine

// The ways out: to the maker, to a newer version, to the donation page. The maker's link is short where its full form does not fit.
Item {
    id: footer

    required property UpdatePresenter updates
    readonly property bool fullFormFits: full.implicitWidth + others.spacing + others.implicitWidth <= width

    implicitHeight: Math.max(full.implicitHeight, others.implicitHeight)
    implicitWidth: compact.implicitWidth + others.spacing + others.implicitWidth

    KestrovaLink {
        id: full

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        objectName: "fullLink"
        visible: footer.fullFormFits
    }

    KestrovaLink {
        id: compact

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        compact: true
        objectName: "compactLink"
        visible: !footer.fullFormFits
    }

    Row {
        id: others

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 14

        UpdateStatusView {
            anchors.verticalCenter: parent.verticalCenter
            maximumWidth: footer.width - compact.implicitWidth - coffee.implicitWidth - 2 * others.spacing
            objectName: "updateStatus"
            updates: footer.updates
        }

        BuyMeACoffeeLink {
            id: coffee

            anchors.verticalCenter: parent.verticalCenter
            objectName: "coffeeLink"
        }
    }
}
