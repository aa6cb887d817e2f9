import QtQuick
import Vellumine

// The six chips in one row. Where that is too wide the last ones go to a second line: no text is cut.
Item {
    id: group

    required property SettingsPresenter settings
    readonly property alias chips: row.children
    readonly property real rowWidth: {
        let width = -row.spacing;
        for (let index = 0; index < row.children.length; ++index)
            width += row.children[index].implicitWidth + row.spacing;
        return width;
    }

    implicitHeight: row.implicitHeight
    implicitWidth: rowWidth

    Flow {
        id: row

        spacing: 6
        width: group.width

        FormatSettingsChip {
            settings: group.settings
        }

        ResizeSettingsChip {
            settings: group.settings
        }

        QualitySettingsChip {
            settings: group.settings
        }

        DestinationSettingsChip {
            settings: group.settings
        }

        MetadataSettingsChip {
            settings: group.settings
        }

        ColorSettingsChip {
            settings: group.settings
        }
    }
}
