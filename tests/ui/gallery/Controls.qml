import QtQuick
import Vellumine

Rectangle {
    id: scene

    width: 720
    height: 400
    color: KestrovaTheme.bg

    Component.onCompleted: Qt.callLater(() => menu.popup(20, 190))

    Grid {
        x: 20; y: 20
        columns: 2
        spacing: 14

        KestrovaSwitch { text: "Show warning before overwrite"; checked: true }
        KestrovaSwitch { text: "Off, with the keyboard"; focus: true }
        KestrovaPicker { model: ["Max Width", "Longest Edge", "No Resize"]; currentIndex: 1 }
        Row {
            spacing: 6
            KestrovaTextField { placeholderText: "Prefix" }
            KestrovaTextField { text: "1,920"; implicitWidth: 90 }
            KestrovaStepper {}
        }
        KestrovaSlider { from: 1; to: 100; value: 85 }
        Row {
            spacing: 8
            QuietButtonStyle { symbol: "gearshape"; helpText: "Preferences" }
            QuietButtonStyle { text: "Choose Folder..." }
            QuietButtonStyle { text: "Disabled"; enabled: false }
            FinderRevealButtonStyle { symbol: "arrow.up.right" }
            ComparisonReviewButtonStyle { symbol: "rectangle.split.2x1" }
        }
    }

    Rectangle {
        x: 260; y: 180; width: 440; height: 130; radius: 10
        color: KestrovaTheme.lightCard
        Grid {
            x: 14; y: 14; columns: 2; spacing: 12
            KestrovaSwitch { light: true; text: "Preserve time"; checked: true }
            KestrovaSwitch { light: true; text: "Off" }
            KestrovaPicker { light: true; model: ["Original Location", "Selected Folder"] }
            Row {
                spacing: 6
                KestrovaTextField { light: true; placeholderText: "Suffix" }
                KestrovaStepper { light: true }
            }
            KestrovaSlider { light: true; from: 1; to: 100; value: 40 }
            QuietButtonStyle { light: true; text: "Choose Folder..." }
        }
    }
    Flow {
        x: 260; y: 330; spacing: 10; width: 440
        Repeater {
            model: ["seal.fill", "gearshape", "arrow.triangle.2.circlepath", "square.and.arrow.down", "arrow.up.right", "cup.and.saucer.fill", "arrow.clockwise", "sparkle", "arrow.down.circle", "checkmark", "chevron.up.chevron.down", "minus", "square", "square.on.square", "xmark", "line.3.horizontal", "stop", "exclamationmark.triangle.fill"]
            SymbolImage { required property string modelData; name: modelData; size: 24; color: KestrovaTheme.cream }
        }
    }

    KestrovaMenu {
        id: menu
        KestrovaMenuItem { text: "WebP Lossy"; checkable: true; checked: true }
        KestrovaMenuItem { text: "WebP Lossless"; checkable: true }
        KestrovaMenuItem { text: "JPEG"; checkable: true; highlighted: true }
        KestrovaMenuSeparator {}
        KestrovaMenuItem { text: "Preferences..."; shortcutText: "Ctrl+," }
        KestrovaMenuItem { text: "Lossless format"; enabled: false }
    }
}
