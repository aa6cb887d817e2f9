import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    id: root

    height: 630
    width: 800

    ComparisonFixture {
        id: fixture
    }

    Component {
        id: viewComponent

        ImageComparisonReviewView {
            focus: true
            height: root.height
            presenter: fixture.presenter
            width: root.width
        }
    }

    TestCase {
        property ImageComparisonReviewView view
        property Item canvas

        function shown(x: real, y: real): string {
            // the renderer draws an item alone without its place, but the whole view as it is
            const shot = grabImage(view);
            const place = canvas.mapToItem(view, x, y);
            const pixel = shot.pixel(Math.round(place.x), Math.round(place.y));
            return pixel.r > 0.9 && pixel.b < 0.1 ? "after" : pixel.b > 0.9 && pixel.r < 0.1 ? "before" : "neither";
        }

        function show() {
            view = createTemporaryObject(viewComponent, root);
            canvas = findChild(view, "canvas");
            waitForRendering(view);
        }

        name: "ImageComparisonReviewView"
        when: windowShown

        function init() {
            fixture.makeFlat(720, 460);
            show();
        }

        function test_startsWithTheSplitInTheMiddle() {
            compare(shown(100, 300), "before");
            compare(shown(canvas.width - 100, 300), "after");
            const line = findChild(canvas, "splitLine");
            compare(line.width, 2);
            compare(line.x + 1, canvas.width / 2);
            compare(findChild(canvas, "splitHandle").width, 22);
        }

        function test_textsAroundTheCanvas() {
            const texts = [];
            const collect = parent => {
                for (const child of Array.from(parent.children)) {
                    if (child instanceof Text && child.visible && child !== canvas)
                        texts.push(child.text);
                    if (child !== canvas)
                        collect(child);
                }
            };
            collect(view);
            compare(texts, ["Before / After Review", "100% center sample", fixture.presenter.sourceText, fixture.presenter.outputText, "Before", fixture.presenter.sourceSizeText, "After", fixture.presenter.outputSizeText, "Move the pointer"]);
        }

        function test_eachSideIsNamedInItsOuterCorner() {
            const sides = ["beforeSide", "afterSide"].map(name => findChild(canvas, name));
            const labels = sides.map(side => Array.from(side.children).filter(child => child instanceof ReviewSideLabel));
            compare(labels.map(found => found.map(label => label.text)), [["Before"], ["After"]]);
            const before = labels[0][0];
            const after = labels[1][0];
            compare(before.x, canvas.labelX);
            compare(after.x + after.width, sides[1].width - canvas.labelX);
            compare([before.y, after.y], [canvas.labelY, canvas.labelY]);
        }

        function test_bothNamesCanBeRead_data() {
            return [
                {tag: "a large sample", width: 720, height: 460},
                {tag: "a sample with room for both", width: 200, height: 90},
                {tag: "a strip", width: 135, height: 40},
                {tag: "a narrow sample", width: 100, height: 300},
                {tag: "a low sample", width: 300, height: 20},
                {tag: "one pixel", width: 1, height: 1}
            ];
        }

        function test_bothNamesCanBeRead(row) {
            view.destroy();
            fixture.makeFlat(row.width, row.height);
            show();
            const [before, after] = ["beforeSide", "afterSide"].map(name => {
                const side = findChild(canvas, name);
                const label = Array.from(side.children).find(child => child instanceof ReviewSideLabel);
                verify(label.x >= 0 && label.x + label.width <= side.width, "not cut off");
                return label.mapToItem(canvas, 0, 0, label.width, label.height);
            });
            verify(before.right < canvas.splitX && after.left > canvas.splitX);
            const handle = findChild(canvas, "splitHandle");
            const top = handle.mapToItem(canvas, 0, 0).y;
            verify(before.bottom <= top || before.right < canvas.splitX - handle.width / 2, "beside the handle or above it");
            verify(before.top >= 7 && before.bottom <= canvas.height - 7);
        }

        function test_theSplitFollowsThePointer() {
            mouseMove(canvas, 200, 100);
            compare(fixture.presenter.split, 200 / canvas.width);
            compare(shown(190, 300), "before");
            compare(shown(210, 300), "after");
            // and stays where it was when the pointer leaves
            mouseMove(view, 2, 2);
            compare(fixture.presenter.split, 200 / canvas.width);
        }

        function test_atTheLeftEdgeAllIsAfterAndAtTheRightEdgeAllIsBefore() {
            fixture.presenter.pointAt(0, canvas.width);
            for (const x of [25, 200, 700])
                compare(shown(x, 300), "after");
            fixture.presenter.pointAt(canvas.width, canvas.width);
            for (const x of [25, 200, 700])
                compare(shown(x, 300), "before");
        }

        function test_theArrowKeysMoveTheSplit() {
            verify(canvas.activeFocus);
            keyClick(Qt.Key_Right);
            compare(fixture.presenter.split, 0.51);
            keyClick(Qt.Key_Left, Qt.ShiftModifier);
            compare(fixture.presenter.split, 0.41);
            keyClick(Qt.Key_Home);
            compare(fixture.presenter.split, 0);
            keyClick(Qt.Key_End);
            compare(fixture.presenter.split, 1);
        }

        function test_mirroringLeavesBeforeAtTheLeft() {
            view.LayoutMirroring.enabled = true;
            view.LayoutMirroring.childrenInherit = true;
            waitForRendering(view);
            compare(shown(100, 300), "before");
            compare(shown(canvas.width - 100, 300), "after");
        }

        function test_mirroringTurnsTheTextsAround() {
            const heading = findChild(view, "headingText");
            const sample = findChild(view, "sampleText");
            compare(sample.mapToItem(view, 0, 0).x, heading.mapToItem(view, 0, 0).x);
            view.LayoutMirroring.enabled = true;
            view.LayoutMirroring.childrenInherit = true;
            waitForRendering(view);
            verify(sample.width < heading.width);
            compare(sample.mapToItem(view, sample.width, 0).x, heading.mapToItem(view, heading.width, 0).x);
        }

        function test_pixelsAreOnePointLargeAndSharp() {
            view.destroy();
            fixture.makeChecked(120, 90);
            show();
            fixture.presenter.setSplit(1);
            const shot = grabImage(view);
            const scale = shot.width / view.width;
            const left = canvas.x + canvas.parent.x + Math.round((canvas.width - 120) / 2);
            const top = canvas.y + canvas.parent.y + Math.round((canvas.height - 90) / 2);
            for (const [x, y] of [[0, 0], [5, 2], [12, 69], [8, 43], [119, 89], [30, 57]]) {
                for (const part of [0.25, 0.75]) {
                    const pixel = shot.pixel(Math.floor((left + x + part) * scale), Math.floor((top + y + part) * scale));
                    compare(pixel.r, (x + y) % 2 === 0 ? 0 : 1);
                }
            }
        }

        function test_tellsNamesAndSizes() {
            compare(findChild(view, "sourceName").text, "Before: Dolomites at dawn.jpg");
            compare(findChild(view, "outputName").text, "After: Dolomites at dawn.webp");
            compare(findChild(view, "sourceSize").value, "4032x3024");
            compare(findChild(view, "outputSize").value, "2560x1920");
        }

        function test_theCanvasLooksAsItShould() {
            compare(canvas.radius, 8);
            compare(canvas.border.width, 1);
            verify(canvas.height >= 256);
            view.height = 420;
            view.width = 560;
            waitForRendering(view);
            verify(canvas.height >= 256);
        }

        function test_aSmallSampleStandsInTheMiddle() {
            view.destroy();
            fixture.makeFlat(300, 200);
            show();
            compare(shown(canvas.width / 2 - 140, canvas.height / 2 - 40), "before");
            compare(shown(canvas.width / 2 + 140, canvas.height / 2 - 40), "after");
            compare(shown(canvas.width / 2 - 160, canvas.height / 2), "neither");
            compare(shown(canvas.width / 2 + 160, canvas.height / 2), "neither");
        }
    }
}
