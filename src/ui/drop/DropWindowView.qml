import QtQuick
import QtQuick.Layouts
import Vellumine

// What the main window holds: header, drop zone, results, totals and footer.
FocusScope {
    id: view

    required property SettingsPresenter settings
    required property ProcessingPresenter processing
    required property ResultsListModel results
    required property StatsPresenter stats
    required property UpdatePresenter updates
    property real cornerRadius: 0
    // The zone keeps its height as long as one row is left of the results. In a lower window it is what gives way, down to
    // one line, and then the totals.
    readonly property real zoneHeight: 170
    readonly property real leastZoneHeight: 46
    readonly property real besideZone: column.anchors.topMargin + header.implicitHeight + (list.visible ? column.spacing + list.leastHeight : 0) + footer.implicitHeight + column.anchors.bottomMargin + 2 * column.spacing
    readonly property real totalsHeight: column.spacing + strip.implicitHeight
    readonly property bool hasRoomForTotals: height - besideZone - totalsHeight >= leastZoneHeight

    signal preferencesRequested

    implicitHeight: 420
    implicitWidth: 720

    WindowBackground {
        anchors.fill: parent
        mirrored: view.LayoutMirroring.enabled
        objectName: "background"
        radius: view.cornerRadius
    }

    ColumnLayout {
        id: column

        anchors.bottomMargin: 22
        anchors.fill: parent
        anchors.leftMargin: 22
        anchors.rightMargin: 22
        anchors.topMargin: 42
        spacing: 18

        DropWindowHeader {
            id: header

            Layout.fillWidth: true
            objectName: "header"
            settings: view.settings

            onPreferencesRequested: view.preferencesRequested()
        }

        DropZone {
            id: zone

            Layout.fillHeight: true
            Layout.fillWidth: true
            Layout.minimumHeight: Math.max(view.leastZoneHeight, Math.min(view.zoneHeight, view.height - view.besideZone - (view.hasRoomForTotals ? view.totalsHeight : 0)))
            Layout.preferredHeight: view.zoneHeight
            focus: true
            objectName: "zone"
            processing: view.processing
        }

        ResultsList {
            id: list

            Layout.fillHeight: true
            Layout.fillWidth: true
            Layout.maximumHeight: implicitHeight
            objectName: "results"
            results: view.results
        }

        LifetimeStatsStrip {
            id: strip

            Layout.fillWidth: true
            objectName: "stats"
            stats: view.stats
            visible: view.hasRoomForTotals
        }

        DropWindowFooter {
            id: footer

            Layout.fillWidth: true
            // so that it gets narrower than its full form
            Layout.minimumWidth: 0
            objectName: "footer"
            updates: view.updates
        }
    }

    BatchAnnouncer {
        processing: view.processing
        summary: view.results.summary

        onAnnounced: text => announcement.say(text)
    }

    Announcement {
        id: announcement

        objectName: "announcement"
    }

    Shortcut {
        sequences: [ShortcutTexts.openKeys]

        onActivated: zone.chooseFiles()
    }

    Shortcut {
        sequences: [ShortcutTexts.pasteKeys]

        onActivated: view.processing.paste()
    }
}
