#include "ui/drop/UpdatePresenter.h"

#include "core/Product.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace vellumine {
namespace {

struct Row {
    const char* name;
    UpdateChecker::Status status;
    bool canRetry;
    bool isAvailable;
    const char* text;
};

class UpdatePresenterTest : public testing::TestWithParam<Row> { };

TEST_P(UpdatePresenterTest, ShowsWhatTheStatusAsksFor)
{
    UpdatePresenter presenter([] {});
    presenter.show(GetParam().status);
    EXPECT_EQ(presenter.canRetry(), GetParam().canRetry);
    EXPECT_EQ(presenter.isAvailable(), GetParam().isAvailable);
    EXPECT_EQ(presenter.updateText(), QString::fromUtf8(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Statuses, UpdatePresenterTest,
    testing::Values(Row { "idle", UpdateChecker::Idle {}, false, false, "" },
        Row { "checking", UpdateChecker::Checking {}, false, false, "" },
        Row { "current", UpdateChecker::Current {}, false, false, "" },
        Row { "failed", UpdateChecker::Failed {}, true, false, "" },
        Row { "updateAvailable", UpdateChecker::UpdateAvailable { QStringLiteral("2.0") }, false,
            true, "Update 2.0" }),
    test::RowName());

TEST(UpdatePresenterTest, HasTheTextsAndTheAddress)
{
    EXPECT_EQ(UpdatePresenter::retryHelpText(), QStringLiteral("Check for updates"));
    EXPECT_EQ(UpdatePresenter::updateHelpText(), QStringLiteral("Download the latest Vellumine"));
    EXPECT_EQ(UpdatePresenter::downloadUrl(), QUrl(QString(product::downloadUrl)));
}

TEST(UpdatePresenterTest, FollowsTheChecker)
{
    // An address that is not https fails at once and loads nothing.
    UpdateChecker checker(
        { .homePage = QUrl(QStringLiteral("http://kestrova.example/")) }, QStringLiteral("1.0"));
    UpdatePresenter presenter(checker);
    EXPECT_FALSE(presenter.canRetry());
    const QSignalSpy changes(&presenter, &UpdatePresenter::changed);
    checker.checkForUpdates();
    EXPECT_TRUE(presenter.canRetry());
    // checking, failed
    EXPECT_EQ(changes.count(), 2);
    presenter.retry();
    EXPECT_EQ(changes.count(), 4);
}

TEST(UpdatePresenterTest, ShowsWhatTheCheckerFoundBefore)
{
    UpdateChecker checker(
        { .homePage = QUrl(QStringLiteral("http://kestrova.example/")) }, QStringLiteral("1.0"));
    checker.checkForUpdates();
    EXPECT_TRUE(UpdatePresenter(checker).canRetry());
}

TEST(UpdatePresenterTest, IsSilentAboutAnUnchangedStatus)
{
    UpdatePresenter presenter([] {});
    const QSignalSpy changes(&presenter, &UpdatePresenter::changed);
    presenter.show(UpdateChecker::Failed {});
    presenter.show(UpdateChecker::Failed {});
    EXPECT_EQ(changes.count(), 1);
}

} // namespace
} // namespace vellumine
