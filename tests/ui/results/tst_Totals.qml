import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    id: root

    height: 300
    width: 600

    ResultsFixture {
        id: results
    }

    StatsFixture {
        id: stats
    }

    ResultsSummary {
        id: summary

        summary: results.model.summary
        width: root.width
    }

    LifetimeStatsStrip {
        id: strip

        stats: stats.presenter
        width: root.width
        y: 60
    }

    LifetimeStatsGrid {
        id: grid

        stats: stats.presenter
        width: root.width
        y: 120
    }

    TestCase {
        function metrics(parent) {
            const found = [];
            for (const child of Array.from(parent.children)) {
                if (child.title !== undefined)
                    found.push(child.title + ": " + child.value);
            }
            return found;
        }

        name: "Totals"
        when: windowShown

        function test_1_theSummaryCountsSuccessesAndSavings() {
            results.addSuccess("a.jpg", 2000000, 1500000);
            results.addFailure("b.jpg", "No.");
            compare(metrics(summary), ["Files: 1/2", "Total Saved: 500 KB", "Reduction: 25.0%"]);
        }

        function test_2_theSummaryTellsGrowth() {
            results.addSuccess("c.jpg", 1000, 1501000);
            compare(metrics(summary), ["Files: 2/3", "Total Larger: 1 MB", "Reduction: +50.0%"]);
        }

        function test_titlesAreCapitalsAndColoured() {
            const title = findChild(summary, "title");
            const value = findChild(summary, "value");
            compare(title.font.capitalization, Font.AllUppercase);
            fuzzyCompare(title.color, KestrovaTheme.copperBright, 1);
            verify(title.font.bold);
            fuzzyCompare(value.color, KestrovaTheme.cream, 1);
            compare(value.font.pixelSize, 13);
            fuzzyCompare(findChild(grid, "title").color, KestrovaTheme.copperStrong, 1);
            fuzzyCompare(findChild(grid, "value").color, KestrovaTheme.ink, 1);
            compare(findChild(grid, "value").font.pixelSize, 14);
        }

        function test_theStripTellsANegativeNetSavingAndHidesAZeroBest() {
            stats.set(2, 2, 10, 20, -2000, 0);
            compare(findChild(strip, "netSaved").text, "Net saved -2 KB");
            verify(!findChild(strip, "best").visible);
            stats.set(2, 2, 10, 20, 5000, 4000);
            compare(findChild(strip, "files").text, "2 lifetime files");
            compare(findChild(strip, "best").text, "Best 4 KB");
            verify(findChild(strip, "best").visible);
        }

        function test_theStripsLine() {
            const files = findChild(strip, "files");
            const line = files.parent;
            compare(line.spacing, 10);
            compare([line.x, line.y, strip.width - line.x - line.width], [12, 8, 12]);
            compare(files.font.pixelSize, TextStyle.caption.pixelSize);
            compare(files.font.weight, Font.DemiBold);
            const symbol = line.children[0];
            compare(symbol.name, "chart.line.uptrend.xyaxis");
            fuzzyCompare(symbol.color, KestrovaTheme.copperBright, 1);
        }

        function test_theStripIsACapsule() {
            compare(strip.radius, strip.height / 2);
            compare(strip.color.a.toFixed(2), "0.08");
            compare(strip.border.color.a.toFixed(2), "0.12");
            compare(strip.border.width, 1);
        }

        function test_theGridHasThreeColumnsOfSix() {
            stats.set(10, 9, 9000, 12000, -3000, 500);
            waitForRendering(grid);
            compare(metrics(grid), ["Files: 9/10", "Gross Saved: Zero KB", "Net Saved: -3 KB", "Original Data: 9 KB", "Output Data: 12 KB", "Largest Save: 500 bytes"]);
            const cells = grid.children;
            compare(cells[3].x, cells[0].x);
            verify(cells[1].x - cells[0].x >= 120);
            verify(cells[3].y > cells[2].y);
        }
    }
}
