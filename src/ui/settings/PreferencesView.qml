import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Vellumine

// Every setting in labelled sections, the lifetime totals and the version.
FocusScope {
    id: view

    required property SettingsPresenter settings
    required property StatsPresenter stats
    property real cornerRadius: 0

    // What a key has brought the focus to comes into sight, its section's title with the first of a section.
    function showFocused() {
        const item = Window.activeFocusItem;
        let ancestor = item?.parent ?? null;
        while (ancestor && ancestor !== sections)
            ancestor = ancestor.parent;
        const byKeys = [Qt.TabFocusReason, Qt.BacktabFocusReason, Qt.ShortcutFocusReason];
        if (!ancestor || !byKeys.includes(item["focusReason"]))
            return;
        const place = item.mapToItem(sections, 0, 0, item.width, item.height);
        const margin = 36;
        const y = Math.max(Math.min(page.contentY, place.top - margin), place.bottom + margin - page.height);
        page.contentY = Math.max(0, Math.min(y, page.contentHeight - page.height));
    }

    Window.onActiveFocusItemChanged: showFocused()
    implicitHeight: 840
    implicitWidth: 620

    WindowBackground {
        anchors.fill: parent
        mirrored: view.LayoutMirroring.enabled
        radius: view.cornerRadius
    }

    ColumnLayout {
        anchors.bottomMargin: 16
        anchors.fill: parent
        anchors.leftMargin: 22
        anchors.rightMargin: 22
        anchors.topMargin: 42
        spacing: 10

        RowLayout {
            Layout.fillWidth: true

            ColumnLayout {
                spacing: 2

                Text {
                    Accessible.name: text
                    Accessible.role: Accessible.Heading
                    color: KestrovaTheme.cream
                    font: TextStyle.title2
                    text: qsTr("Preferences")
                }

                Text {
                    color: KestrovaTheme.creamMuted
                    font: TextStyle.subheadline
                    text: qsTr("Local image conversion defaults")
                }
            }

            Item {
                Layout.fillWidth: true
            }

            Text {
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: 4
                color: KestrovaTheme.creamSubtle
                font: TextStyle.subheadline
                text: view.settings.appVersionText
            }
        }

        Flickable {
            id: page

            Layout.fillHeight: true
            Layout.fillWidth: true
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height
            contentHeight: sections.implicitHeight
            contentWidth: width
            objectName: "page"

            T.ScrollBar.vertical: KestrovaScrollBar {}

            ColumnLayout {
                id: sections

                // Room that is left goes between the sections.
                height: Math.max(implicitHeight, Math.min(page.height, implicitHeight + 60))
                spacing: 8
                width: page.width - (page.contentHeight > page.height ? 14 : 0)
                x: view.LayoutMirroring.enabled ? page.width - width : 0

                OutputPreferences {
                    Layout.fillWidth: true
                    settings: view.settings
                }

                PreferenceSection {
                    Layout.fillWidth: true
                    rowSpacing: 2
                    title: qsTr("Optimization")

                    KestrovaSwitch {
                        checked: view.settings.optimizeColorForSharing
                        light: true
                        text: qsTr("Optimize color for sharing")

                        onToggled: view.settings.optimizeColorForSharing = checked
                    }

                    KestrovaSwitch {
                        checked: view.settings.removeColorManagement
                        light: true
                        text: qsTr("Remove color management information")

                        onToggled: view.settings.removeColorManagement = checked
                    }

                    KestrovaSwitch {
                        checked: view.settings.removeMetadata
                        light: true
                        text: qsTr("Remove personal information and metadata")

                        onToggled: view.settings.removeMetadata = checked
                    }
                }

                DestinationPreferences {
                    Layout.fillWidth: true
                    settings: view.settings
                }

                PreferenceSection {
                    Layout.fillWidth: true
                    title: qsTr("Miscellaneous")

                    GridLayout {
                        Layout.fillWidth: true
                        columnSpacing: 10
                        columns: 2
                        rowSpacing: 2

                        KestrovaSwitch {
                            Layout.fillWidth: true
                            checked: view.settings.moveOriginalToTrash
                            light: true
                            text: qsTr("Move original to Trash")

                            onToggled: view.settings.moveOriginalToTrash = checked
                        }

                        KestrovaSwitch {
                            Layout.fillWidth: true
                            checked: view.settings.preserveModificationTime
                            light: true
                            text: qsTr("Preserve file modification time")

                            onToggled: view.settings.preserveModificationTime = checked
                        }

                        KestrovaSwitch {
                            Layout.fillWidth: true
                            checked: view.settings.warnBeforeOverwrite
                            light: true
                            text: qsTr("Show warning before overwrite")

                            onToggled: view.settings.warnBeforeOverwrite = checked
                        }

                        KestrovaSwitch {
                            Layout.fillWidth: true
                            checked: view.settings.exitWhenComplete
                            light: true
                            text: qsTr("Exit when optimization complete")

                            onToggled: view.settings.exitWhenComplete = checked
                        }
                    }
                }

                PreferenceSection {
                    Layout.fillWidth: true
                    title: qsTr("Lifetime Stats")

                    LifetimeStatsGrid {
                        Layout.fillWidth: true
                        stats: view.stats
                    }

                    DestructiveButton {
                        Layout.topMargin: 4
                        enabled: view.stats.canReset
                        objectName: "resetButton"
                        symbol: "arrow.counterclockwise"
                        text: qsTr("Reset Lifetime Stats")

                        onClicked: view.stats.reset()
                    }
                }
            }
        }
    }
}
