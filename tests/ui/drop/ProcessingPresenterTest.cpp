#include "ui/drop/ProcessingPresenter.h"

#include "batch/HoldingScope.h"
#include "batch/ModelHarness.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>

namespace vellumine::test {
namespace {

class ProcessingPresenterTest : public ModelHarness {
protected:
    ProcessingModel& m_batches { makeModel() };
    ProcessingPresenter m_presenter { m_batches };

    /// Drops the pictures and waits until as many as can be are being converted.
    void convert(const QStringList& names)
    {
        m_presenter.loadDroppedFiles(pictures(names));
        ASSERT_TRUE(m_optimizer.waitUntilBegun(std::min<qsizetype>(2, names.size())));
    }
    void finish()
    {
        m_optimizer.letAllGo();
        ASSERT_TRUE(runUntilIdle());
    }
};

TEST_F(ProcessingPresenterTest, ShowsTheSymbolOfTheState)
{
    EXPECT_EQ(m_presenter.symbol(), QStringLiteral("square.and.arrow.down"));
    ASSERT_NO_FATAL_FAILURE(convert({ QStringLiteral("a.jpg") }));
    EXPECT_EQ(m_presenter.symbol(), QStringLiteral("arrow.triangle.2.circlepath"));
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_EQ(m_presenter.symbol(), QStringLiteral("square.and.arrow.down"));
}

TEST_F(ProcessingPresenterTest, PassesTheStatusOn)
{
    const QSignalSpy changes(&m_presenter, &ProcessingPresenter::statusTextChanged);
    EXPECT_EQ(m_presenter.statusText(), QStringLiteral("Drop images here"));
    ASSERT_NO_FATAL_FAILURE(convert({ QStringLiteral("a.jpg") }));
    EXPECT_EQ(m_presenter.statusText(), QStringLiteral("Optimizing 1 image with 1 worker..."));
    EXPECT_GT(changes.count(), 0);
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_EQ(m_presenter.statusText(), QStringLiteral("Done"));
}

TEST_F(ProcessingPresenterTest, HandsOnADropOfUnsupportedFilesAsAnEmptyList)
{
    m_presenter.loadDroppedFiles(
        pictures({ QStringLiteral("a.svg"), QStringLiteral("notes.txt") }));
    EXPECT_EQ(m_presenter.statusText(), QStringLiteral("No supported image files found"));
    EXPECT_FALSE(m_presenter.isProcessing());
}

TEST_F(ProcessingPresenterTest, HandsOnADropDuringABatch)
{
    ASSERT_NO_FATAL_FAILURE(convert({ QStringLiteral("a.jpg") }));
    m_presenter.loadDroppedFiles(pictures({ QStringLiteral("b.jpg"), QStringLiteral("b.txt") }));
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_EQ(resultNames(), (QStringList { QStringLiteral("b.jpg"), QStringLiteral("a.jpg") }));
}

TEST_F(ProcessingPresenterTest, ShowsHowFarTheBatchIs)
{
    EXPECT_FALSE(m_presenter.hasProgress());
    EXPECT_EQ(m_presenter.progress(), 0);
    ASSERT_NO_FATAL_FAILURE(convert({ QStringLiteral("a.jpg"), QStringLiteral("b.jpg"),
        QStringLiteral("c.jpg"), QStringLiteral("d.jpg") }));
    EXPECT_TRUE(m_presenter.hasProgress());
    m_optimizer.letGo(QStringLiteral("a.jpg"));
    ASSERT_TRUE(runUntilResults(1));
    EXPECT_EQ(m_presenter.progress(), 0.25);
    EXPECT_EQ(m_presenter.progressText(), QStringLiteral("1 of 4"));
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_FALSE(m_presenter.hasProgress());
}

TEST_F(ProcessingPresenterTest, StopsABatchAfterTheFilesInFlight)
{
    const QSignalSpy changes(&m_presenter, &ProcessingPresenter::canStopChanged);
    EXPECT_FALSE(m_presenter.canStop());
    m_presenter.stop();
    EXPECT_EQ(m_presenter.stopText(), QStringLiteral("Stop"));
    ASSERT_NO_FATAL_FAILURE(convert({ QStringLiteral("a.jpg"), QStringLiteral("b.jpg"),
        QStringLiteral("c.jpg"), QStringLiteral("d.jpg") }));
    EXPECT_TRUE(m_presenter.canStop());
    m_presenter.stop();
    EXPECT_TRUE(m_presenter.canStop());
    EXPECT_EQ(m_presenter.stopText(), QStringLiteral("Stop now"));
    EXPECT_TRUE(m_presenter.isProcessing());
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_EQ(m_presenter.statusText(), QStringLiteral("Stopped after 2 of 4"));
    EXPECT_EQ(m_presenter.stopText(), QStringLiteral("Stop"));
    EXPECT_EQ(changes.count(), 4); // it can, what it does, it cannot, what it would do
}

/// The batches of a model whose scans last until the test ends them.
class LongScan : public ModelHarness {
protected:
    ~LongScan() override { m_holding->letGo(); }

    void scan()
    {
        m_holding->hold();
        m_model->process(pictures({ QStringLiteral("a.jpg") }));
        ASSERT_TRUE(runUntilStatus("Scanning for images..."));
    }
    void finish()
    {
        m_holding->letGo();
        m_optimizer.letAllGo();
        ASSERT_TRUE(runUntilIdle());
    }

    std::shared_ptr<HoldingScope> m_holding = std::make_shared<HoldingScope>();
    ProcessingModel& m_batches { makeModel(heldBack()) };

private:
    ProcessingModel::Dependencies heldBack()
    {
        ProcessingModel::Dependencies held = dependencies();
        held.folderAccess.securityScope = m_holding;
        return held;
    }
};

TEST_F(LongScan, CanBeStopped)
{
    ProcessingPresenter presenter(m_batches);
    ASSERT_NO_FATAL_FAILURE(scan());
    EXPECT_TRUE(presenter.canStop());
    EXPECT_EQ(presenter.stopText(), QStringLiteral("Stop"));
    presenter.stop();
    EXPECT_FALSE(presenter.canStop()) << "nothing is in flight that could be given up";
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_EQ(presenter.statusText(), QStringLiteral("Stopped after 0 of 0"));
    EXPECT_TRUE(m_optimizer.begun().isEmpty());
    ASSERT_NO_FATAL_FAILURE(scan());
    EXPECT_TRUE(presenter.canStop()) << "the next batch";
    EXPECT_EQ(presenter.stopText(), QStringLiteral("Stop"));
    ASSERT_NO_FATAL_FAILURE(finish());
}

TEST_F(LongScan, OffersToBeStoppedAndGoesOnOfferingItOfTheConversions)
{
    const ProcessingPresenter presenter(m_batches, std::chrono::milliseconds(0));
    const QSignalSpy changes(&presenter, &ProcessingPresenter::offersStopChanged);
    ASSERT_NO_FATAL_FAILURE(scan());
    ASSERT_TRUE(runUntil([&] { return presenter.offersStop(); }));
    EXPECT_FALSE(presenter.hasProgress());
    m_holding->letGo();
    ASSERT_TRUE(m_optimizer.waitUntilBegun(1));
    EXPECT_TRUE(presenter.hasProgress());
    EXPECT_EQ(changes.count(), 1);
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_FALSE(presenter.offersStop());
}

TEST_F(LongScan, OffersNothingWhileItMayBeAShortOne)
{
    const ProcessingPresenter presenter(m_batches, std::chrono::hours(1));
    const QSignalSpy changes(&presenter, &ProcessingPresenter::offersStopChanged);
    ASSERT_NO_FATAL_FAILURE(scan());
    EXPECT_FALSE(presenter.offersStop());
    m_holding->letGo();
    ASSERT_TRUE(m_optimizer.waitUntilBegun(1));
    EXPECT_TRUE(presenter.offersStop());
    ASSERT_NO_FATAL_FAILURE(finish());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(ProcessingPresenterTest, GivesUpTheFilesInFlightWhenAskedAgain)
{
    ASSERT_NO_FATAL_FAILURE(convert({ QStringLiteral("a.jpg"), QStringLiteral("b.jpg"),
        QStringLiteral("c.jpg"), QStringLiteral("d.jpg") }));
    m_presenter.stop();
    EXPECT_TRUE(m_optimizer.interrupted().isEmpty());
    m_presenter.stop();
    EXPECT_FALSE(m_presenter.canStop());
    m_presenter.stop();
    ASSERT_TRUE(runUntilStatus("Stopped after 2 of 4"));
    EXPECT_EQ(m_optimizer.interrupted().size(), 2);
}

TEST_F(ProcessingPresenterTest, CanStopTheBatchAfterAStoppedOne)
{
    ASSERT_NO_FATAL_FAILURE(convert({ QStringLiteral("a.jpg") }));
    m_presenter.stop();
    m_presenter.loadDroppedFiles(pictures({ QStringLiteral("b.jpg") }));
    m_optimizer.letGo(QStringLiteral("a.jpg"));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(2));
    EXPECT_TRUE(m_presenter.canStop());
    ASSERT_NO_FATAL_FAILURE(finish());
}

TEST_F(ProcessingPresenterTest, TakesCopiedFiles)
{
    auto copied = std::make_unique<QMimeData>();
    copied->setData(QStringLiteral("text/uri-list"), "file:///pictures/a%20b.jpg\r\n");
    QGuiApplication::clipboard()->setMimeData(copied.release());
    m_presenter.paste();
    ASSERT_TRUE(m_optimizer.waitUntilBegun(1));
    EXPECT_EQ(m_optimizer.begun(), QStringList { QStringLiteral("a b.jpg") });
    ASSERT_NO_FATAL_FAILURE(finish());
}

TEST_F(ProcessingPresenterTest, PastesNothingFromACopiedText)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("/pictures/a.jpg"));
    m_presenter.paste();
    EXPECT_EQ(m_presenter.statusText(), QStringLiteral("Drop images here"));
}

TEST_F(ProcessingPresenterTest, FiltersFilesByTheSupportedExtensions)
{
    const QStringList filters = ProcessingPresenter::nameFilters();
    ASSERT_EQ(filters.size(), 2);
    for (const char* extension :
        { "jpg", "jpeg", "png", "gif", "tif", "tiff", "bmp", "heic", "heif", "webp" }) {
        const QString pattern = QStringLiteral("*.") + QString::fromLatin1(extension);
        EXPECT_TRUE(filters[0].contains(pattern)) << extension;
        EXPECT_TRUE(filters[0].contains(pattern.toUpper())) << extension;
    }
    EXPECT_TRUE(filters[1].contains(QStringLiteral("(*)")));
}

} // namespace
} // namespace vellumine::test
