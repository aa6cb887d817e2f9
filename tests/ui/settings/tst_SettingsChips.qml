import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    id: root

    width: 800
    height: 500

    Component {
        id: scene

        Item {
            property alias fixture: fixture
            property alias group: group
            property SettingsPresenter settings: fixture.presenter

            anchors.fill: parent

            SettingsFixture {
                id: fixture
            }

            SettingsChipGroup {
                id: group

                settings: fixture.presenter
            }
        }
    }

    TestCase {
        id: testCase

        property var view

        function chips() {
            const found = [];
            for (let index = 0; index < view.group.chips.length; ++index)
                found.push(view.group.chips[index]);
            return found;
        }

        /// The menu that stands open, with its items by their texts.
        function items(chip) {
            mouseClick(chip);
            const menu = chip.openMenu;
            tryCompare(menu, "opened", true);
            const found = [];
            for (let index = 0; index < menu.count; ++index)
                found.push(menu.itemAt(index));
            return found;
        }

        function texts(chip) {
            return items(chip).map(item => item.text ?? "-");
        }

        function choose(chip, text) {
            const item = items(chip).find(candidate => candidate.text === text);
            verify(item, text);
            mouseClick(item);
        }

        name: "SettingsChips"
        when: windowShown

        function init() {
            view = createTemporaryObject(scene, root);
        }

        function test_sixChipsInOrder() {
            compare(view.group.chips.length, 6);
            const names = chips().map(chip => chip.text);
            compare(names, ["WebP Lossy", "2560px", "Quality 82", "Original location", "Remove metadata", "sRGB"]);
        }

        function test_helpTexts() {
            const helps = chips().map(chip => chip.helpText);
            compare(helps, ["Change output format", "Change resize settings", "Change compression quality", "Change output destination", "Toggle metadata removal", "Toggle color optimization"]);
        }

        function test_lookOfAChip() {
            const chip = view.group.chips[0];
            compare(chip.font.pixelSize, 11);
            compare(chip.font.weight, Font.DemiBold);
            compare(chip.contentItem.children[0].size, 10);
            compare(chip.leftPadding, 7);
            compare(chip.rightPadding, 7);
            compare(chip.topPadding, 4);
            compare(chip.bottomPadding, 4);
            compare(chip.spacing, 4);
            compare(chip.background.radius, chip.height / 2);
            fuzzyCompare(chip.background.color.a, 0.1, 0.01);
            fuzzyCompare(chip.background.border.color.a, 0.14, 0.01);
            compare(chip.background.border.width, 1);
        }

        function test_formatMenuListsEveryFormat() {
            compare(texts(view.group.chips[0]), ["Format", "WebP Lossy", "WebP Lossless", "JPEG", "PNG", "HEIC", "Original Format"]);
        }

        function test_choosingAFormat() {
            choose(view.group.chips[0], "HEIC");
            compare(view.settings.outputFormat, 4);
            compare(view.group.chips[0].text, "HEIC");
            const checked = items(view.group.chips[0]).filter(item => item.checked);
            compare(checked.length, 1);
            compare(checked[0].text, "HEIC");
        }

        function test_aMenuThatAKeyOpensGivesTheFocusBack() {
            const chip = view.group.chips[2];
            chip.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            tryCompare(chip.openMenu, "opened", true);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Return);
            tryCompare(view.settings, "quality", 70);
            tryCompare(chip, "visualFocus", true);
            keyClick(Qt.Key_Space);
            tryCompare(chip.openMenu, "opened", true);
            compare(chip.openMenu.currentIndex, -1, "none is highlighted that was before");
            keyClick(Qt.Key_Escape);
            tryCompare(chip, "visualFocus", true);
        }

        function test_aSecondClickClosesTheMenu() {
            const chip = view.group.chips[0];
            items(chip);
            mouseClick(chip);
            tryCompare(chip.openMenu, "visible", false);
            items(chip);
            const other = view.group.chips[1];
            items(other);
            tryCompare(chip.openMenu, "visible", false);
        }

        function test_returnDoesWhatAClickDoes_data() {
            return [{tag: "Return", key: Qt.Key_Return}, {tag: "Enter", key: Qt.Key_Enter}];
        }

        function test_returnDoesWhatAClickDoes(row) {
            const toggle = view.group.chips[4];
            toggle.forceActiveFocus(Qt.TabFocusReason);
            keyClick(row.key);
            verify(!view.settings.removeMetadata);
            const chip = view.group.chips[0];
            chip.forceActiveFocus(Qt.TabFocusReason);
            keyClick(row.key);
            tryCompare(chip.openMenu, "opened", true);
            keyClick(Qt.Key_Escape);
            tryCompare(chip, "visualFocus", true);
        }

        function test_choosingTheFormatAgainKeepsItsMark() {
            choose(view.group.chips[0], "WebP Lossy");
            const checked = items(view.group.chips[0]).filter(item => item.checked);
            compare(checked.length, 1);
        }

        function test_resizeMenu() {
            compare(texts(view.group.chips[1]), ["Resize Mode", "Max Width", "Max Height", "Longest Edge", "No Resize", "-", "1280 px", "1920 px", "2560 px", "3840 px"]);
        }

        function test_presetWhileResizeIsOffSwitchesToMaxWidth() {
            view.settings.resizeMode = 3;
            const chip = view.group.chips[1];
            compare(chip.text, "No resize");
            compare(chip.systemName, "aspectratio");
            choose(chip, "2560 px");
            compare(view.settings.resizeMode, 0);
            compare(chip.text, "2560px");
            compare(chip.systemName, "arrow.left.and.right");
        }

        function test_losslessFormatOffersNoQualities() {
            view.settings.outputFormat = 1;
            const chip = view.group.chips[2];
            compare(chip.text, "Lossless");
            compare(chip.systemName, "checkmark.seal");
            const found = items(chip);
            compare(found.length, 1);
            compare(found[0].text, "Lossless format");
            verify(!found[0].enabled);
        }

        function test_choosingAQuality() {
            compare(texts(view.group.chips[2]), ["Quality 60", "Quality 70", "Quality 80", "Quality 90", "Quality 100"]);
            view.group.chips[2].openMenu.close();
            choose(view.group.chips[2], "Quality 90");
            compare(view.settings.quality, 90);
            compare(view.group.chips[2].text, "Quality 90");
        }

        function test_destinationMenuChoosesAFolder() {
            const chip = view.group.chips[3];
            compare(texts(chip), ["Destination", "Original Location", "Selected Folder", "-", "Choose Folder..."]);
            chip.openMenu.close();
            view.fixture.chosenFolder = "/pictures/web";
            choose(chip, "Choose Folder...");
            compare(view.fixture.panelCount, 1);
            compare(view.settings.destinationMode, 1);
            compare(chip.text, "web");
            compare(texts(chip)[4], "Change Folder...");
        }

        function test_cancellingTheFolderPanelChangesNothing() {
            const chip = view.group.chips[3];
            choose(chip, "Choose Folder...");
            compare(view.fixture.panelCount, 1);
            compare(view.settings.destinationMode, 0);
            compare(chip.text, "Original location");
        }

        function test_togglesToggle() {
            const metadata = view.group.chips[4];
            mouseClick(metadata);
            verify(!view.settings.removeMetadata);
            compare(metadata.text, "Keep metadata");
            compare(metadata.systemName, "doc.badge.gearshape");
            const color = view.group.chips[5];
            mouseClick(color);
            verify(!view.settings.optimizeColorForSharing);
            compare(color.text, "Original color");
        }

        function test_keyboardOpensAMenuAndChooses() {
            const chip = view.group.chips[0];
            chip.forceActiveFocus(Qt.TabFocusReason);
            verify(chip.background.children[0].shown);
            keyClick(Qt.Key_Space);
            tryCompare(chip.openMenu, "opened", true);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Return);
            compare(view.settings.outputFormat, 1);
        }

        function test_narrowGroupsWrapInsteadOfCutting() {
            view.group.width = 400;
            waitForRendering(view.group);
            for (const chip of chips()) {
                verify(chip.x + chip.width <= 400);
                verify(chip.width >= chip.implicitWidth);
            }
            verify(view.group.implicitHeight > view.group.chips[0].height);
        }
    }
}
