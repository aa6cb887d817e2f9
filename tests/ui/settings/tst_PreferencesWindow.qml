import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    height: 10
    width: 10

    SettingsFixture {
        id: fixture
    }

    StatsFixture {
        id: totals
    }

    DialogFixture {
        id: questions
    }

    Component {
        id: windowComponent

        PreferencesWindow {
            folderPanel: questions.folderPanel
            settings: fixture.presenter
            stats: totals.presenter
        }
    }

    Component {
        id: otherComponent

        Window {
            height: 10
            width: 10
        }
    }

    TestCase {
        property Window other
        property PreferencesWindow window
        readonly property Item field: window ? findChild(window.contentItem, "maximumField") : null

        name: "PreferencesWindow"
        when: windowShown

        function init() {
            fixture.presenter.maximumPixels = 2560;
            // Without a parent, as in the program: a window is not active because another one is.
            other = otherComponent.createObject(null);
            window = windowComponent.createObject(null);
            show(window);
        }

        function cleanup() {
            window.destroy();
            other.destroy();
        }

        function show(shown) {
            shown.show();
            shown.requestActivate();
            tryCompare(shown, "active", true);
        }

        function type(item, text) {
            item.forceActiveFocus(Qt.TabFocusReason);
            item.selectAll();
            for (const letter of text)
                keyClick(letter);
        }

        function test_aTypedMaximumCountsWhenTheWindowGoes_data() {
            return [
                {tag: "by its keys", leave: () => keyClick(Qt.Key_W, Qt.ControlModifier)},
                {tag: "because the desktop or the program closes it", leave: () => window.close()},
                {tag: "behind another one", leave: () => show(other)}
            ];
        }

        function test_aTypedMaximumCountsWhenTheWindowGoes(row) {
            type(field, "20000");
            row.leave();
            compare(fixture.presenter.maximumPixels, 20000);
            show(window);
            compare(field.text, fixture.presenter.maximumPixelsText);
        }

        function test_aWindowThatComesBackStaysWhereItWasScrolled() {
            window.minimumHeight = 400;
            window.height = 400;
            field.forceActiveFocus(Qt.TabFocusReason);
            const page = findChild(window.contentItem, "page");
            tryVerify(() => page.contentHeight > page.height);
            page.contentY = page.contentHeight - page.height;
            const before = page.contentY;
            show(other);
            show(window);
            verify(field.activeFocus);
            compare(page.contentY, before);
        }

        function test_aWindowThatComesBackIsTypedOnInto() {
            type(field, "12");
            show(other);
            show(window);
            keyClick("8");
            keyClick("0");
            keyClick(Qt.Key_Return);
            compare(fixture.presenter.maximumPixels, 1280);
        }

        function test_textThatIsNoNumberIsForgottenWhenTheWindowGoes() {
            type(field, "wide");
            window.close();
            compare(fixture.presenter.maximumPixels, 2560);
            show(window);
            compare(field.text, fixture.presenter.maximumPixelsText);
        }

        function test_namesCountAsTheyAreTyped_data() {
            return [
                {tag: "prefixField", value: "filenamePrefix"},
                {tag: "suffixField", value: "filenameSuffix"}
            ];
        }

        function test_namesCountAsTheyAreTyped(row) {
            type(findChild(window.contentItem, row.tag), "small");
            compare(fixture.presenter[row.value], "small");
        }
    }
}
