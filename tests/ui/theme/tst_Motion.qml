import QtTest
import Vellumine

TestCase {
    name: "Motion"

    function cleanup() {
        Motion.reducedMotion = false;
    }

    function test_isShortAndCalm() {
        for (const duration of [Motion.quick, Motion.calm])
            verify(duration >= 150 && duration <= 250);
    }

    function test_isNoneWhereTheDesktopAsksForLittle() {
        Motion.reducedMotion = true;
        compare([Motion.quick, Motion.calm], [0, 0]);
    }
}
