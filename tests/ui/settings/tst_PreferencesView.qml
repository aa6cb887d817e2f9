import QtQuick
import Vellumine

PreferencesTestCase {
    id: test

    name: "PreferencesView"

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
        test.height = 780;
        waitForRendering(view);
        verify(page.contentHeight <= page.height, page.contentHeight + " of " + page.height);
    }

    function test_whatAKeyReachesComesIntoSight_data() {
        return [{tag: "Tab", modifiers: Qt.NoModifier}, {tag: "Shift and Tab", modifiers: Qt.ShiftModifier}];
    }

    function test_whatAKeyReachesComesIntoSight(row) {
        view.totals.set(3, 2, 9000, 3000, 6000, 5000);
        test.height = 400;
        waitForRendering(view);
        const page = all(item => item instanceof Flickable)[0];
        verify(page.contentHeight > page.height);
        const first = find("resizeModePicker");
        first.forceActiveFocus(Qt.TabFocusReason);
        const reached = [];
        const places = [];
        for (let item = first; reached.length < 40; item = view.Window.activeFocusItem) {
            const place = item.mapToItem(page, 0, 0, item.width, item.height);
            verify(place.top >= 4 && place.bottom <= page.height - 4, item + " from " + place.top + " to " + place.bottom);
            reached.push(item);
            places.push(page.contentY);
            keyClick(Qt.Key_Tab, row.modifiers);
            if (view.Window.activeFocusItem === first)
                break;
        }
        for (const item of [first, switchNamed("Move original to Trash"), find("resetButton")])
            verify(reached.includes(item), item);
        compare(Math.max(...places), page.contentHeight - page.height);
        compare(Math.min(...places), 0);
    }

    function test_aClickMovesNothing() {
        test.height = 400;
        waitForRendering(view);
        const page = all(item => item instanceof Flickable)[0];
        const control = switchNamed("Remove personal information and metadata");
        page.contentY = control.mapToItem(page.contentItem, 0, 0).y + control.height - page.height;
        const before = page.contentY;
        mouseClick(control);
        verify(control.activeFocus);
        compare(page.contentY, before);
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
