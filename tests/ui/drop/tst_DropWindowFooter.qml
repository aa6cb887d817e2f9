import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    height: 100
    width: 720

    UpdateFixture {
        id: news
    }

    DropWindowFooter {
        id: footer

        updates: news.presenter
        width: 676
    }

    TestCase {
        readonly property Item coffee: findChild(footer, "coffeeLink")
        readonly property Item compact: findChild(footer, "compactLink")
        readonly property Item full: findChild(footer, "fullLink")
        readonly property Item label: findChild(footer, "updateLabel")
        readonly property Item update: findChild(footer, "updateButton")

        name: "DropWindowFooter"
        when: windowShown

        function init() {
            news.showIdle();
        }

        function rectOf(item) {
            return item.mapToItem(footer, 0, 0, item.width, item.height);
        }

        function test_theNameOfAVersionIsShownInFullWhereThereIsRoom() {
            news.showAvailable("2.4.1");
            verify(full.visible);
            verify(!label.truncated);
            compare(label.width, label.implicitWidth);
        }

        function test_aLongNameOfAVersionShowsItsBeginning_data() {
            return [
                {tag: "long", version: "2.1.0 (build 45), for 64-bit Linux desktops, with the new HEIC encoder and German texts"},
                {tag: "endless", version: "9".repeat(20000)},
                {tag: "of two lines", version: "2.1.0\nfor desktops"}
            ];
        }

        function test_aLongNameOfAVersionShowsItsBeginning(row) {
            const height = footer.implicitHeight;
            news.showAvailable(row.version);
            tryVerify(() => label.truncated);
            waitForRendering(footer);
            const link = full.visible ? full : compact;
            verify(rectOf(update).left >= rectOf(link).right);
            verify(rectOf(update).right <= rectOf(coffee).left);
            compare(rectOf(coffee).right, footer.width);
            compare(footer.implicitHeight, height);
            compare(update.Accessible.name, "Update " + row.version);
        }
    }
}
