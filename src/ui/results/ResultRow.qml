import QtQuick
import Vellumine

// One file: how it went, its name, what became of its size, and what can be looked at.
Item {
    id: row

    required property int index
    required property string fileName
    required property string message
    required property string statusSymbol
    required property color statusColor
    required property string metricsText
    required property var badges
    required property bool isSuccess
    required property bool hasOutput
    required property bool hasDivider
    required property string spokenText
    property bool current: false

    signal compareRequested
    signal focusReceived(SquareButton button)
    signal revealRequested

    Accessible.focusable: true
    Accessible.focused: current
    Accessible.name: spokenText
    Accessible.role: Accessible.ListItem
    implicitHeight: 76

    SymbolImage {
        id: status

        anchors.left: parent.left
        anchors.leftMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        color: row.statusColor
        name: row.statusSymbol
        objectName: "status"
        size: 20
    }

    Column {
        id: texts

        anchors.left: status.right
        anchors.leftMargin: 12
        anchors.right: buttons.visible ? buttons.left : parent.right
        anchors.rightMargin: buttons.visible ? 12 : 14
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: badges.visible ? -(badges.height + spacing) / 2 : 0
        spacing: 2

        Text {
            color: KestrovaTheme.cream
            elide: Text.ElideMiddle
            font: TextStyle.body
            horizontalAlignment: Text.AlignLeft
            maximumLineCount: 1
            objectName: "fileName"
            text: row.fileName
            textFormat: Text.PlainText
            width: parent.width
        }

        Text {
            color: KestrovaTheme.creamMuted
            elide: Text.ElideRight
            font: TextStyle.caption
            horizontalAlignment: Text.AlignLeft
            // why it failed may take the place of what only a success has
            maximumLineCount: row.isSuccess ? 1 : 3
            objectName: "message"
            text: row.message
            textFormat: Text.PlainText
            width: parent.width
            wrapMode: row.isSuccess ? Text.NoWrap : Text.Wrap
        }

        Text {
            color: KestrovaTheme.creamSubtle
            elide: Text.ElideRight
            font: TextStyle.caption
            horizontalAlignment: Text.AlignLeft
            objectName: "metrics"
            text: row.metricsText
            textFormat: Text.PlainText
            visible: row.isSuccess
            width: parent.width
        }
    }

    // below the buttons there is room for more of them
    ConversionAuditBadges {
        id: badges

        anchors.left: texts.left
        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.top: texts.bottom
        anchors.topMargin: texts.spacing
        badges: row.badges
        objectName: "badges"
    }

    Row {
        id: buttons

        // the Tab key goes through the current row, and not through thousands of others
        readonly property int focusOfButtons: row.current ? Qt.StrongFocus : Qt.ClickFocus

        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        objectName: "buttons"
        spacing: 7
        visible: row.hasOutput

        ComparisonReviewButtonStyle {
            id: compareButton

            focusPolicy: buttons.focusOfButtons
            helpText: qsTr("Open before and after viewer")
            objectName: "compare"
            symbol: "rectangle.split.2x1"

            onActiveFocusChanged: {
                if (activeFocus)
                    row.focusReceived(compareButton);
            }
            onClicked: row.compareRequested()
        }

        FinderRevealButtonStyle {
            id: revealButton

            focusPolicy: buttons.focusOfButtons
            helpText: qsTr("Show in Finder")
            objectName: "reveal"
            symbol: "magnifyingglass"

            onActiveFocusChanged: {
                if (activeFocus)
                    row.focusReceived(revealButton);
            }
            onClicked: row.revealRequested()
        }
    }

    Rectangle {
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: 1
        anchors.right: parent.right
        anchors.rightMargin: 1
        color: KestrovaTheme.faded(KestrovaTheme.cream, 0.1)
        height: 1
        objectName: "divider"
        visible: row.hasDivider
    }

    FocusRing {
        gap: -3
        radius: 6
        shown: row.current
    }
}
