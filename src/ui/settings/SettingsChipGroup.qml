import QtQuick
import Vellumine

// The six chips in one row. Where that is too wide the last ones go to a second line: no text is cut.
Flow {
    id: group

    required property SettingsPresenter settings

    readonly property real rowWidth: {
        let width = -spacing;
        for (const chip of children)
            width += chip.implicitWidth + spacing;
        return width;
    }

    implicitWidth: rowWidth
    spacing: 6

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
