import QtQuick
import QtTest
import Vellumine
import VellumineTest

Item {
    height: 100
    width: 400

    UpdateFixture {
        id: news
    }

    BrowserFixture {
        id: browser
    }

    UpdateStatusView {
        id: view

        updates: news.presenter
    }

    TestCase {
        readonly property Item retry: findChild(view, "retryButton")
        readonly property Item update: findChild(view, "updateButton")

        name: "UpdateStatusView"
        when: windowShown

        function init() {
            news.showIdle();
            browser.opened = [];
        }

        function test_showsNothing_data() {
            return [
                {tag: "before any check", show: () => news.showIdle()},
                {tag: "while a check runs", show: () => news.showChecking()},
                {tag: "when there is no newer version", show: () => news.showCurrent()}
            ];
        }

        function test_showsNothing(row) {
            news.showFailed();
            row.show();
            verify(!retry.visible);
            verify(!update.visible);
            compare(view.implicitWidth, 0);
        }

        function test_retryAfterAFailure() {
            news.showFailed();
            verify(retry.visible);
            verify(!update.visible);
            compare(retry.helpText, "Check for updates");
            compare(retry.contentItem.name, "arrow.clockwise");
            verify(retry.contentItem.available);
            compare(retry.contentItem.color, KestrovaTheme.copper);
            const before = news.checkCount;
            mouseClick(retry);
            compare(news.checkCount, before + 1);
            // the check runs now
            verify(!retry.visible);
        }

        function test_updateOpensTheDownload() {
            news.showAvailable("2.0.1");
            verify(!retry.visible);
            verify(update.visible);
            compare(update.text, "Update 2.0.1");
            compare(update.helpText, "Download the latest Vellumine");
            fuzzyCompare(findChild(update, "updateLabel").color, KestrovaTheme.copperBright, 1);
            const symbols = [update.contentItem.children[0], update.contentItem.children[2]];
            compare(symbols.map(symbol => symbol.name), ["sparkle", "arrow.down.circle"]);
            for (const symbol of symbols) {
                verify(symbol.available);
                fuzzyCompare(symbol.color, KestrovaTheme.copperBright, 1);
            }
            mouseClick(update);
            compare(browser.opened.length, 1);
            compare(browser.opened[0], news.presenter.downloadUrl);
        }
    }
}
