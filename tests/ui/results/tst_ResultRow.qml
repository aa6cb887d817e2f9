import QtQuick
import Vellumine

ResultsTestCase {
    name: "ResultRow"

    function badgesShown(item: Item): int {
        const badges = findChild(item, "badges");
        let count = 0;
        for (const child of Array.from(badges.children)) {
            if (child.visible && child.systemName !== undefined)
                ++count;
        }
        return badges.visible ? count : 0;
    }

    function test_aSuccessShowsEverything() {
        fixture.addSuccess("a.jpg", 2000000, 1500000, {"alpha": true});
        waitForRendering(list);
        compare(findChild(row(0), "fileName").text, "a.jpg");
        compare(findChild(row(0), "message").text, "Saved 500 KB");
        compare(findChild(row(0), "metrics").text, "2 MB -> 1.5 MB | saved 500 KB (25.0%)");
        compare(findChild(row(0), "status").name, "checkmark.circle.fill");
        fuzzyCompare(findChild(row(0), "status").color, KestrovaTheme.sage, 1);
        compare(badgesShown(row(0)), 5);
        verify(findChild(row(0), "buttons").visible);
    }

    function test_aSourceWithoutAlphaShowsFourBadges() {
        fixture.addSuccess("a.jpg", 2000000, 1500000);
        waitForRendering(list);
        compare(badgesShown(row(0)), 4);
    }

    function test_aFailureShowsItsNameAndMessageAlone() {
        fixture.addFailure("b.jpg", "The image could not be read.");
        waitForRendering(list);
        compare(findChild(row(0), "status").name, "exclamationmark.triangle.fill");
        fuzzyCompare(findChild(row(0), "status").color, KestrovaTheme.copper, 1);
        compare(findChild(row(0), "message").text, "The image could not be read.");
        verify(!findChild(row(0), "metrics").visible);
        verify(!findChild(row(0), "buttons").visible);
        compare(badgesShown(row(0)), 0);
    }

    function test_aLongReasonTakesTheRowsWholeWidthAndThreeLines() {
        const reason = "Could not convert the image: the file ends in the middle of its data, which was seen after 1234 of 5678 lines had been read. ";
        fixture.addFailure("b.jpg", reason + reason.toLowerCase());
        waitForRendering(list);
        const message = findChild(row(0), "message");
        verify(message.lineCount > 1);
        verify(!message.truncated);
        compare(message.mapToItem(row(0), message.width, 0).x, row(0).width - 14);
        fixture.addFailure("c.jpg", reason.repeat(20));
        waitForRendering(list);
        const endless = findChild(row(0), "message");
        compare(endless.lineCount, 3);
        verify(endless.truncated, "its end is dots");
        const name = findChild(row(0), "fileName");
        verify(name.mapToItem(row(0), 0, 0).y >= 2);
        verify(endless.mapToItem(row(0), 0, endless.height).y <= 74);
    }

    function test_aFailureWithAnOutputHasItsButtonsAlone() {
        fixture.addFailureWithOutput("b.jpg", "Something went wrong.");
        waitForRendering(list);
        compare(findChild(row(0), "status").name, "exclamationmark.triangle.fill");
        compare(findChild(row(0), "message").text, "Something went wrong.");
        verify(!findChild(row(0), "metrics").visible);
        compare(badgesShown(row(0)), 0);
        verify(findChild(row(0), "buttons").visible);
        mouseClick(findChild(row(0), "compare"));
        compare(fixture.compared, ["b.jpg > b.jpg"]);
        mouseClick(findChild(row(0), "reveal"));
        compare(fixture.revealed, ["b.jpg"]);
    }

    function test_aRowThatIsUsedAgainShowsItsNewResultAlone() {
        for (let number = 0; number < 60; ++number) {
            if (number % 2)
                fixture.addSuccess(number + ".jpg", 2000, 1000, {"alpha": number % 4 === 1});
            else
                fixture.addFailure(number + ".jpg", "No.");
        }
        waitForRendering(list);
        for (let index = 0; index < 60; index += 5) {
            view().positionViewAtIndex(index, ListView.Contain);
            const number = 59 - index;
            compare(findChild(row(index), "fileName").text, number + ".jpg");
            compare(findChild(row(index), "metrics").visible, number % 2 === 1);
            compare(badgesShown(row(index)), number % 2 === 0 ? 0 : number % 4 === 1 ? 5 : 4);
        }
    }

    function test_markupInNamesIsText() {
        fixture.addSuccess("<b>a&amp;b", 2, 1);
        waitForRendering(list);
        compare(findChild(row(0), "fileName").textFormat, Text.PlainText);
        compare(findChild(row(0), "fileName").text, "<b>a&amp;b");
    }

    function test_textsOfARowAsTheyShouldLook() {
        fixture.addSuccess("a.jpg", 2000000, 1500000);
        waitForRendering(list);
        const name = findChild(row(0), "fileName");
        const message = findChild(row(0), "message");
        const metrics = findChild(row(0), "metrics");
        fuzzyCompare(name.color, KestrovaTheme.cream, 1);
        fuzzyCompare(message.color, KestrovaTheme.creamMuted, 1);
        fuzzyCompare(metrics.color, KestrovaTheme.creamSubtle, 1);
        compare([message.font.pixelSize, metrics.font.pixelSize], [TextStyle.caption.pixelSize, TextStyle.caption.pixelSize]);
        compare([name.maximumLineCount, message.maximumLineCount], [1, 1]);
        compare(message.y - name.y - name.height, 2);
        compare(metrics.y - message.y - message.height, 2);
        const buttons = findChild(row(0), "buttons");
        compare(buttons.spacing, 7);
        compare([findChild(row(0), "compare").symbol, findChild(row(0), "reveal").symbol], ["rectangle.split.2x1", "magnifyingglass"]);
    }

    function test_badgesAsTheyShouldLook() {
        fixture.addSuccess("a.jpg", 2000000, 1500000);
        waitForRendering(list);
        const badge = findChild(row(0), "badges").children[0];
        const symbol = badge.children[0];
        const label = badge.children[1];
        compare(badge.systemName, "aspectratio");
        compare(symbol.name, "aspectratio");
        compare(label.text, "4032x3024 -> 2560x1920");
        compare(label.font.pixelSize, 9);
        compare(label.font.weight, Font.DemiBold);
        fuzzyCompare(label.color, KestrovaTheme.creamMuted, 1);
        compare(symbol.x, 5);
        compare(label.x, 5 + symbol.width + 3);
        compare(badge.height, label.implicitHeight + 2 * 2);
        fuzzyCompare(badge.color, KestrovaTheme.faded(KestrovaTheme.cream, 0.07), 1);
        fuzzyCompare(badge.border.color, KestrovaTheme.faded(KestrovaTheme.cream, 0.1), 1);
        compare(badge.border.width, 1);
        verify(badge.radius > 0);
    }

    function test_everythingOfARowLiesInsideIt() {
        fixture.addSuccess("a.jpg", 2000000, 1500000, {"alpha": true});
        waitForRendering(list);
        for (const name of ["status", "fileName", "message", "metrics", "badges", "buttons"]) {
            const item = findChild(row(0), name);
            const place = item.mapToItem(row(0), 0, 0, item.width, item.height);
            verify(place.top >= 0 && place.bottom <= 76, name);
            verify(place.left >= 0 && place.right <= row(0).width, name);
        }
    }

    function test_theButtonsCompareAndReveal() {
        fixture.addSuccess("a.jpg", 2, 1);
        fixture.addSuccess("b.jpg", 2, 1);
        waitForRendering(list);
        const compareButton = findChild(row(1), "compare");
        compare(compareButton.helpText, "Open before and after viewer");
        mouseClick(compareButton);
        compare(fixture.compared, ["a.jpg > a.jpg"]);
        const revealButton = findChild(row(0), "reveal");
        compare(revealButton.helpText, "Show in Finder");
        mouseClick(revealButton);
        compare(fixture.revealed, ["b.jpg"]);
    }
}
