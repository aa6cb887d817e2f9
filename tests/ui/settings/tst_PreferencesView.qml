import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    id: root

    height: 840
    width: 620

    Component {
        id: scene

        Item {
            property alias fixture: fixture
            property alias totals: totals
            property alias preferences: preferences
            property SettingsPresenter settings: fixture.presenter

            anchors.fill: parent

            SettingsFixture {
                id: fixture
            }

            StatsFixture {
                id: totals
            }

            PreferencesView {
                id: preferences

                anchors.fill: parent
                settings: fixture.presenter
                stats: totals.presenter
            }
        }
    }

    TestCase {
        property var view
        readonly property SettingsPresenter settings: view?.settings ?? null

        function find(name: string): Item {
            return findChild(view.preferences, name);
        }

        // in the order of the tree, which is the order on the page
        function all(matches, parent = view.preferences) {
            let found = [];
            for (const child of Array.from(parent.children)) {
                if (matches(child))
                    found.push(child);
                found = found.concat(all(matches, child));
            }
            return found;
        }

        function texts() {
            return all(item => item instanceof Text && item.visible).map(item => item.text);
        }

        function switchNamed(text) {
            return all(item => item instanceof KestrovaSwitch && item.text === text)[0];
        }

        function type(field, text) {
            field.forceActiveFocus(Qt.TabFocusReason);
            field.selectAll();
            for (const letter of text)
                keyClick(letter);
            if (text.length === 0)
                keyClick(Qt.Key_Delete);
        }

        name: "PreferencesView"
        when: windowShown

        function init() {
            Motion.reducedMotion = true;
            view = createTemporaryObject(scene, root);
            waitForRendering(view);
        }

        function test_headerNamesTheWindowAndTheVersion() {
            compare(texts().slice(0, 3), ["Preferences", "Local image conversion defaults", settings.appVersionText]);
        }

        function test_sectionsInTheirOrder() {
            const sections = all(item => item instanceof PreferenceSection);
            compare(sections.map(section => section.title), ["Output", "Optimization", "Destination", "Miscellaneous", "Lifetime Stats"]);
            for (let index = 1; index < sections.length; ++index)
                verify(sections[index].y >= sections[index - 1].y + sections[index - 1].height);
            const title = all(item => item instanceof Text && item.text === "Output")[0];
            compare(title.font.capitalization, Font.AllUppercase);
            verify(title.font.pixelSize < 13);
        }

        function test_rowsAndTheirLabels() {
            const rows = all(item => item instanceof FormRow);
            compare(rows.map(row => row.label), ["Size", "Maximum", "Format", "Quality", "Destination", "Folder", "Filename"]);
            const label = rows[0].children[0];
            compare(label.width, 112);
            compare(label.font.pixelSize, 13);
            compare(label.font.weight, Font.DemiBold);
            compare(rows[0].children[1].x, 112 + 14);
        }

        function test_everythingFitsTheSmallestWindow() {
            const page = all(item => item instanceof Flickable)[0];
            verify(page.contentHeight <= page.height);
            root.height = 780;
            waitForRendering(view);
            verify(page.contentHeight <= page.height, page.contentHeight + " of " + page.height);
            root.height = 840;
        }

        function test_pickers_data() {
            return [
                {tag: "resizeModePicker", property: "resizeMode", choices: ["Max Width", "Max Height", "Longest Edge", "No Resize"], name: "Size"},
                {tag: "formatPicker", property: "outputFormat", choices: ["WebP Lossy", "WebP Lossless", "JPEG", "PNG", "HEIC", "Original Format"], name: "Format"},
                {tag: "destinationPicker", property: "destinationMode", choices: ["Original Location", "Selected Folder"], name: "Destination"}
            ];
        }

        function test_pickers(row) {
            const picker = find(row.tag);
            compare(picker.model, row.choices);
            compare(picker.Accessible.name, row.name);
            compare(picker.currentIndex, settings[row.property]);
            picker.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Down);
            compare(settings[row.property], 1);
            settings[row.property] = 0;
            compare(picker.displayText, row.choices[0]);
        }

        function test_maximumIsDisabledWhileNothingIsResized() {
            verify(find("maximumRow").enabled);
            settings.resizeMode = 3;
            verify(!find("maximumRow").enabled);
            verify(!find("maximumField").enabled);
            verify(!find("maximumStepper").enabled);
        }

        function test_maximumField() {
            const field = find("maximumField");
            compare(field.width, 90);
            compare(field.placeholderText, "Pixels");
            compare(field.Accessible.name, "Maximum");
            type(field, "1024");
            keyClick(Qt.Key_Return);
            compare(settings.maximumPixels, 1024);
        }

        function test_aTypedValueOutsideTheRangeIsKeptUntilTheStepperIsUsed() {
            type(find("maximumField"), "20000");
            find("maximumStepper").forceActiveFocus(Qt.TabFocusReason);
            compare(settings.maximumPixels, 20000);
            keyClick(Qt.Key_Up);
            compare(settings.maximumPixels, 20000, "nothing is above");
            keyClick(Qt.Key_Down);
            compare(settings.maximumPixels, 12000);
            type(find("maximumField"), "7");
            find("maximumStepper").forceActiveFocus(Qt.TabFocusReason);
            compare(settings.maximumPixels, 7);
            keyClick(Qt.Key_Down);
            compare(settings.maximumPixels, 7, "nothing is below");
            keyClick(Qt.Key_Up);
            compare(settings.maximumPixels, 71);
        }

        function test_textThatIsNoNumberIsForgotten() {
            type(find("maximumField"), "wide");
            keyClick(Qt.Key_Return);
            compare(settings.maximumPixels, 2560);
            compare(find("maximumField").text, settings.maximumPixelsText);
        }

        function test_stepperGoesInStepsOf64() {
            find("maximumStepper").forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Up);
            compare(settings.maximumPixels, 2624);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            compare(settings.maximumPixels, 2496);
        }

        function test_quality() {
            const slider = find("qualitySlider");
            compare([slider.from, slider.to, slider.stepSize, slider.value], [1, 100, 1, 82]);
            settings.quality = 85.9;
            compare(find("qualityNumber").text, "85");
            compare(find("qualityNumber").horizontalAlignment, Text.AlignRight);
            settings.quality = 50;
            slider.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Right);
            compare(settings.quality, 51);
            compare(find("qualityNumber").text, "51");
        }

        function test_qualityIsDisabledForALosslessOnlyFormat() {
            verify(find("qualityRow").enabled);
            settings.outputFormat = 1;
            verify(!find("qualitySlider").enabled);
            settings.outputFormat = 3;
            verify(!find("qualitySlider").enabled);
            settings.outputFormat = 2;
            verify(find("qualitySlider").enabled);
        }

        function test_switches_data() {
            return [
                {tag: "Optimize color for sharing", property: "optimizeColorForSharing"},
                {tag: "Remove color management information", property: "removeColorManagement"},
                {tag: "Remove personal information and metadata", property: "removeMetadata"},
                {tag: "Move original to Trash", property: "moveOriginalToTrash"},
                {tag: "Preserve file modification time", property: "preserveModificationTime"},
                {tag: "Show warning before overwrite", property: "warnBeforeOverwrite"},
                {tag: "Exit when optimization complete", property: "exitWhenComplete"}
            ];
        }

        function test_switches(row) {
            const control = switchNamed(row.tag);
            const before = settings[row.property];
            compare(control.checked, before);
            mouseClick(control);
            compare(settings[row.property], !before);
            settings[row.property] = before;
            compare(control.checked, before);
        }

        function test_switchesInTheirOrder() {
            const titles = all(item => item instanceof KestrovaSwitch).map(item => item.text);
            compare(titles, test_switches_data().map(row => row.tag));
        }

        function test_folder() {
            const button = find("folderButton");
            compare(button.symbol, "folder");
            compare(button.text, "Choose Folder...");
            compare(find("folderDescription").text, "Used when Destination is Selected Folder");
            settings.destinationMode = 1;
            compare(find("folderDescription").text, "No folder selected");
            mouseClick(button);
            compare(view.fixture.panelCount, 1);
            compare(button.text, "Choose Folder...", "a cancelled panel changes nothing");
            settings.destinationMode = 0;
            view.fixture.chosenFolder = "/pictures/web";
            mouseClick(button);
            compare(find("folderDescription").text, "/pictures/web");
            compare(button.text, "Change Folder...");
            compare(settings.destinationMode, 0, "the mode is left alone");
        }

        function test_longFolderNamesAreCutInOneLine() {
            view.fixture.storeFolder("/pictures/" + "a long name ".repeat(20));
            waitForRendering(view);
            const text = find("folderDescription");
            verify(text.truncated);
            compare(text.lineCount, 1);
            verify(text.mapToItem(root, text.width, 0).x <= 620 - 22);
        }

        function test_filename_data() {
            return [
                {tag: "prefixField", property: "filenamePrefix", placeholder: "Prefix"},
                {tag: "suffixField", property: "filenameSuffix", placeholder: "Suffix"}
            ];
        }

        function test_filename(row) {
            const field = find(row.tag);
            compare(field.placeholderText, row.placeholder);
            type(field, "web-");
            compare(settings[row.property], "web-", "every letter is written at once");
            settings[row.property] = "";
            compare(field.text, "");
        }

        function test_lifetimeStats() {
            const button = find("resetButton");
            compare(button.text, "Reset Lifetime Stats");
            compare(button.symbol, "arrow.counterclockwise");
            verify(!button.enabled);
            view.totals.set(3, 2, 9000, 3000, 6000, 5000);
            verify(button.enabled);
            verify(texts().includes("2/3"));
            mouseClick(button);
            verify(texts().includes("0/0"));
            verify(!button.enabled);
        }
    }
}
