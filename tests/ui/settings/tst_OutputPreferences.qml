import QtQuick

PreferencesTestCase {
    name: "OutputPreferences"

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

    function test_whatIsBeingTypedStaysWhateverElseChanges() {
        const field = find("maximumField");
        type(field, "10");
        settings.removeMetadata = !settings.removeMetadata;
        settings.refresh();
        compare(field.text, "10");
        compare(settings.maximumPixels, 2560);
        keyClick(Qt.Key_Return);
        compare(settings.maximumPixels, 10);
        settings.maximumPixels = 300;
        compare(field.text, settings.maximumPixelsText);
    }

    function test_aNumberThatIsTooLongShowsItsBeginning() {
        const field = find("maximumField");
        type(field, "123456789012345678");
        find("maximumStepper").forceActiveFocus(Qt.TabFocusReason);
        verify(field.contentWidth > field.width);
        verify(field.positionToRectangle(0).x >= 0);
    }

    function test_aLongNumberThatIsStoredShowsItsBeginning() {
        const field = find("maximumField");
        settings.maximumPixels = 2147483647;
        verify(field.contentWidth > field.width - field.leftPadding - field.rightPadding);
        verify(field.positionToRectangle(0).x >= 0);
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
}
