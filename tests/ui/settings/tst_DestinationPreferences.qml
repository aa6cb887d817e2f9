import QtQuick

PreferencesTestCase {
    id: test

    name: "DestinationPreferences"

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
        verify(text.mapToItem(test, text.width, 0).x <= 620 - 22);
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
}
