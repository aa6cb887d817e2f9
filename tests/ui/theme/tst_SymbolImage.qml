import QtQuick
import QtTest
import Vellumine

Item {
    width: 60
    height: 60

    SymbolImage {
        id: seal

        name: "seal.fill"
        color: KestrovaTheme.copper
        size: 40
    }

    SymbolImage {
        id: unknown

        name: "no.such.symbol"
        color: KestrovaTheme.copper
        x: 40
    }

    TestCase {
        name: "SymbolImage"
        when: windowShown

        function test_isDrawnInItsColour() {
            verify(seal.available);
            compare(seal.implicitWidth, 40);
            const shot = grabImage(seal);
            fuzzyCompare(shot.pixel(20, 20), KestrovaTheme.copper, 2);
            verify(!Qt.colorEqual(shot.pixel(0, 0), shot.pixel(20, 20)));
        }

        function test_withoutADrawingShowsNothing() {
            verify(!unknown.available);
        }
    }
}
