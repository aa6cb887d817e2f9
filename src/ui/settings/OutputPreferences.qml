import QtQuick
import QtQuick.Layouts
import Vellumine

// What is written: its size, its format and its quality.
PreferenceSection {
    id: section

    required property SettingsPresenter settings

    title: qsTr("Output")

    FormRow {
        label: qsTr("Size")

        KestrovaPicker {
            Accessible.name: qsTr("Size")
            currentIndex: section.settings.resizeMode
            model: section.settings.resizeModeTitles
            objectName: "resizeModePicker"
            light: true

            onActivated: index => section.settings.resizeMode = index
        }
    }

    FormRow {
        enabled: section.settings.isResizing
        label: qsTr("Maximum")
        objectName: "maximumRow"

        KestrovaTextField {
            id: pixels

            // not yet counted: shown until it is, whatever else changes
            property bool isTyped: false

            function commit() {
                section.settings.enterMaximumPixels(text);
                isTyped = false;
            }

            Accessible.name: qsTr("Maximum")
            Layout.preferredWidth: 90
            inputMethodHints: Qt.ImhFormattedNumbersOnly
            objectName: "maximumField"
            light: true
            placeholderText: qsTr("Pixels")

            onEditingFinished: commit()
            onTextEdited: isTyped = true

            Binding on text {
                restoreMode: Binding.RestoreNone
                value: section.settings.maximumPixelsText
                when: !pixels.isTyped
            }
        }

        Text {
            color: KestrovaTheme.ink
            font: TextStyle.body
            opacity: enabled ? 1 : 0.5
            text: qsTr("px")
        }

        KestrovaStepper {
            function stepFromWhatWasTyped(steps) {
                if (pixels.activeFocus)
                    pixels.commit();
                section.settings.stepMaximumPixels(steps);
            }

            Accessible.name: qsTr("Maximum")
            canDecrease: section.settings.canStepDown
            canIncrease: section.settings.canStepUp
            objectName: "maximumStepper"
            light: true

            onDecreased: stepFromWhatWasTyped(-1)
            onIncreased: stepFromWhatWasTyped(1)
        }
    }

    FormRow {
        label: qsTr("Format")

        KestrovaPicker {
            Accessible.name: qsTr("Format")
            currentIndex: section.settings.outputFormat
            model: section.settings.outputFormatTitles
            objectName: "formatPicker"
            light: true

            onActivated: index => section.settings.outputFormat = index
        }
    }

    FormRow {
        enabled: section.settings.usesQuality
        label: qsTr("Quality")
        objectName: "qualityRow"

        KestrovaSlider {
            Accessible.name: qsTr("Quality")
            Layout.fillWidth: true
            from: 1
            objectName: "qualitySlider"
            light: true
            stepSize: 1
            to: 100
            value: section.settings.quality

            onMoved: section.settings.quality = value
        }

        Text {
            Layout.preferredWidth: 32
            color: KestrovaTheme.ink
            font: TextStyle.body
            horizontalAlignment: Text.AlignRight
            objectName: "qualityNumber"
            opacity: enabled ? 1 : 0.5
            text: section.settings.qualityNumberText
        }
    }
}
