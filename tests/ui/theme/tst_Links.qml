import QtQuick
import QtTest
import Vellumine
import VellumineTest

Column {
    height: 200
    width: 400

    BrowserFixture {
        id: browser
    }

    KestrovaLink {
        id: full
    }

    KestrovaLink {
        id: compact

        compact: true
    }

    BuyMeACoffeeLink {
        id: coffee
    }

    KestrovaLogoMark {
        id: mark
    }

    KestrovaLogoMark {
        id: markWithoutLogo

        logo: ""
    }

    TestCase {
        name: "Links"
        when: windowShown

        function init() {
            browser.opened = [];
        }

        function test_makersLink_data() {
            return [
                {tag: "full", link: full, text: ProductInfo.creditLine},
                {tag: "compact", link: compact, text: "Kestrova"}
            ];
        }

        function test_makersLink(row) {
            compare(row.link.text, row.text);
            compare(findChild(row.link, "arrow").name, "arrow.up.right");
            compare(row.link.helpText, ProductInfo.makerHelpText);
            mouseClick(row.link);
            compare(browser.opened, [ProductInfo.makerUrl]);
        }

        function test_donationLink() {
            compare(coffee.text, "Buy me a coffee");
            compare(coffee.symbol, "cup.and.saucer.fill");
            compare(findChild(coffee, "arrow").name, "arrow.up.right");
            compare(coffee.helpText, ProductInfo.donationHelpText);
            mouseClick(coffee);
            compare(browser.opened, [ProductInfo.donationUrl]);
        }

        function test_linksOpenByTheKeyboard_data() {
            return [{tag: "Space", key: Qt.Key_Space}, {tag: "Return", key: Qt.Key_Return}, {tag: "Enter", key: Qt.Key_Enter}];
        }

        function test_linksOpenByTheKeyboard(row) {
            full.forceActiveFocus();
            coffee.forceActiveFocus(Qt.TabFocusReason);
            verify(coffee.visualFocus);
            keyClick(row.key);
            compare(browser.opened.length, 1);
        }

        function test_logo() {
            verify(mark.showsLogo);
            verify(!findChild(mark, "seal").visible);
            tryCompare(findChild(mark, "logo"), "status", Image.Ready);
        }

        function test_sealWithoutTheLogo() {
            const seal = findChild(markWithoutLogo, "seal");
            verify(seal.visible);
            compare(seal.name, "seal.fill");
            compare(seal.color, KestrovaTheme.copper);
            verify(!findChild(markWithoutLogo, "logo").visible);
        }
    }
}
