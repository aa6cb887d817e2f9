import QtQuick
import QtTest
import Vellumine

Row {
    id: scene

    height: 80
    spacing: 10
    width: 400

    QuietButtonStyle {
        id: quiet

        text: "Choose Folder..."
    }

    FinderRevealButtonStyle {
        id: reveal

        symbol: "magnifyingglass"
    }

    ComparisonReviewButtonStyle {
        id: review

        symbol: "rectangle.split.2x1"
    }

    TestCase {
        name: "ButtonStyles"
        when: windowShown

        function init() {
            Motion.reducedMotion = true;
            mouseMove(scene, 399, 79);
        }

        function test_quietButton() {
            compare(quiet.font.pixelSize, 13);
            compare(quiet.font.weight, Font.DemiBold);
            compare([quiet.leftPadding, quiet.rightPadding, quiet.topPadding, quiet.bottomPadding], [10, 10, 7, 7]);
            compare(quiet.background.radius, 8);
        }

        function test_squareButton_data() {
            return [
                {tag: "reveal", button: reveal},
                {tag: "review", button: review}
            ];
        }

        function test_squareButton(row) {
            compare(row.button.width, 30);
            compare(row.button.height, 30);
            compare(row.button.background.border.width, 1);
            verify(row.button.background.radius > 0);
        }

        function test_rowButtonsDifferInTheirColours() {
            verify(!Qt.colorEqual(reveal.tone, review.tone));
        }

        function test_fillIsStrongerWhilePressed_data() {
            return [
                {tag: "quiet", button: quiet},
                {tag: "reveal", button: reveal},
                {tag: "review", button: review}
            ];
        }

        function test_fillIsStrongerWhilePressed(row) {
            const atRest = row.button.background.color.a;
            mousePress(row.button);
            tryVerify(() => row.button.background.color.a > atRest);
            mouseRelease(row.button);
        }
    }
}
