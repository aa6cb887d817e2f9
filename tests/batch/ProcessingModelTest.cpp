#include "ModelHarness.h"
#include "support/NamedRows.h"

#include <QElapsedTimer>

#include <new>

namespace vellumine {
namespace {

using test::pictures;
using test::runUntil;
using testing::ElementsAre;
using testing::Pair;

class ProcessingModelTest : public test::ModelHarness { };

TEST_F(ProcessingModelTest, startsIdle)
{
    const ProcessingModel& model = makeModel();
    EXPECT_FALSE(model.isProcessing());
    EXPECT_TRUE(model.results().isEmpty());
    EXPECT_EQ(model.statusText(), QStringLiteral("Drop images here"));
    EXPECT_EQ(model.finishedCount(), 0);
    EXPECT_EQ(model.totalCount(), 0);
}

TEST_F(ProcessingModelTest, goesThroughItsStepsInOrder)
{
    m_optimizer.letAllGo();
    ProcessingModel& model = makeModel();
    countCompletion();
    model.process(pictures({ QStringLiteral("a.png"), QStringLiteral("b.png") }));
    EXPECT_FALSE(model.isProcessing());
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_FALSE(model.isProcessing());
    EXPECT_EQ(m_statuses,
        QStringList({ QStringLiteral("Scanning for images..."),
            QStringLiteral("Optimizing 2 images with 2 workers..."),
            QStringLiteral("Optimized 1 of 2"), QStringLiteral("Optimized 2 of 2"),
            QStringLiteral("Done") }));
    EXPECT_EQ(m_completions, 1);
    EXPECT_THAT(m_progress, ElementsAre(Pair(0, 2), Pair(1, 2), Pair(2, 2), Pair(0, 0)));
}

struct WorkersRow {
    const char* name;
    int files;
    int processors;
    const char* text;
    std::size_t workers;
};

class Workers : public test::ModelHarness, public testing::WithParamInterface<WorkersRow> { };

TEST_P(Workers, areBoundedByProcessorsAndFilesAndWorkAllAtOnce)
{
    auto dependencies = this->dependencies();
    dependencies.activeProcessorCount = GetParam().processors;
    ProcessingModel& model = makeModel(std::move(dependencies));
    QStringList names;
    for (int i = 0; i < GetParam().files; ++i) {
        names.append(QString::number(i) + QStringLiteral(".png"));
    }
    model.process(pictures(names));
    const auto workers = static_cast<qsizetype>(GetParam().workers);
    ASSERT_TRUE(m_optimizer.waitUntilBegun(workers));
    EXPECT_EQ(model.statusText(), QString::fromUtf8(GetParam().text));
    EXPECT_EQ(m_optimizer.begun().size(), workers);
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_optimizer.mostInFlight(), GetParam().workers);
    EXPECT_EQ(model.results().size(), GetParam().files);
}

INSTANTIATE_TEST_SUITE_P(ProcessingModel, Workers,
    testing::Values(
        WorkersRow { "oneFileOnEightProcessors", 1, 8, "Optimizing 1 image with 1 worker...", 1 },
        WorkersRow { "fiveFilesOnOneProcessor", 5, 1, "Optimizing 5 images with 2 workers...", 2 },
        WorkersRow {
            "thirtyFilesOnEightProcessors", 30, 8, "Optimizing 30 images with 8 workers...", 8 },
        WorkersRow {
            "twoFilesOnEightProcessors", 2, 8, "Optimizing 2 images with 2 workers...", 2 },
        WorkersRow { "oneFileOnOneProcessor", 1, 1, "Optimizing 1 image with 1 worker...", 1 }),
    test::RowName());

TEST_F(ProcessingModelTest, resultsComeInFinishingOrderNewestFirst)
{
    auto dependencies = this->dependencies();
    dependencies.activeProcessorCount = 3;
    const QStringList names { QStringLiteral("a.png"), QStringLiteral("b.png"),
        QStringLiteral("c.png") };
    makeModel(std::move(dependencies)).process(pictures(names));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(3));
    m_optimizer.letGo(names[2]);
    ASSERT_TRUE(runUntilStatus("Optimized 1 of 3"));
    m_optimizer.letGo(names[0]);
    ASSERT_TRUE(runUntilStatus("Optimized 2 of 3"));
    m_optimizer.letGo(names[1]);
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(resultNames(), QStringList({ names[1], names[0], names[2] }));
    EXPECT_EQ(m_recorded, QStringList({ names[2], names[0], names[1] }));
}

TEST_F(ProcessingModelTest, resultsStayWhenTheNextBatchComes)
{
    m_optimizer.letAllGo();
    makeModel().process(pictures({ QStringLiteral("a.png") }));
    ASSERT_TRUE(runUntilStatus("Done"));
    m_model->process(pictures({ QStringLiteral("b.png") }));
    ASSERT_TRUE(runUntilResults(2));
    EXPECT_EQ(resultNames(), QStringList({ QStringLiteral("b.png"), QStringLiteral("a.png") }));
}

TEST_F(ProcessingModelTest, aFileThatFailsDoesNotStopTheBatch)
{
    const QStringList names { QStringLiteral("a.png"), QStringLiteral("b.png") };
    m_optimizer.fail(names[0], ImageOptimizerError(UnreadableImage {}));
    m_optimizer.letAllGo();
    makeModel().process(pictures(names));
    ASSERT_TRUE(runUntilStatus("Done"));
    ASSERT_EQ(m_model->results().size(), 2);
    const ProcessingResult failure
        = m_model->results().at(nameOf(m_model->results().at(0)) == names[0] ? 0 : 1);
    EXPECT_FALSE(failure.isSuccess);
    EXPECT_EQ(failure.message, QStringLiteral("The image could not be read."));
    EXPECT_EQ(failure.sourceURL, pictures(names).constFirst());
    EXPECT_FALSE(failure.id.isNull());
    EXPECT_FALSE(failure.outputURL);
    EXPECT_EQ(failure.originalBytes, 0);
    EXPECT_EQ(failure.outputBytes, 0);
    EXPECT_FALSE(failure.audit);
    EXPECT_FALSE(failure.comparisonPreview);
    EXPECT_EQ(m_recorded.size(), 2);
}

TEST_F(ProcessingModelTest, aSystemErrorIsReportedInTheSystemsWords)
{
    m_optimizer.fail(
        QStringLiteral("a.png"), platform::FileError { QStringLiteral("Read-only file system") });
    m_optimizer.letAllGo();
    makeModel().process(pictures({ QStringLiteral("a.png") }));
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_model->results().constFirst().message, QStringLiteral("Read-only file system"));
}

TEST_F(ProcessingModelTest, aFileThatDoesNotFitInMemoryFailsAlone)
{
    auto dependencies = this->dependencies();
    dependencies.optimize = [](const QUrl& url, const OptimizerSettings&,
                                const BatchTerms&) -> Outcome<ProcessingResult> {
        if (platform::lastPathComponent(url) == QStringLiteral("big.png")) {
            throw std::bad_alloc();
        }
        return failed(UnreadableImage {});
    };
    makeModel(std::move(dependencies))
        .process(pictures({ QStringLiteral("big.png"), QStringLiteral("a.png") }));
    ASSERT_TRUE(runUntilStatus("Done"));
    QStringList messages;
    for (const ProcessingResult& result : m_model->results()) {
        messages.append(result.message);
    }
    messages.sort();
    EXPECT_EQ(messages,
        QStringList({ QStringLiteral("Cannot allocate memory"),
            QStringLiteral("The image could not be read.") }));
}

TEST_F(ProcessingModelTest, everyFileOfABatchGetsTheSnapshotOfItsStart)
{
    m_settings.filenamePrefix = QStringLiteral("first-");
    makeModel().process(
        pictures({ QStringLiteral("a.png"), QStringLiteral("b.png"), QStringLiteral("c.png") }));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(2));
    m_settings.filenamePrefix = QStringLiteral("second-");
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_snapshots, 1);
    for (const OptimizerSettings& settings : m_optimizer.settings()) {
        EXPECT_EQ(settings.filenamePrefix, QStringLiteral("first-"));
    }
}

TEST_F(ProcessingModelTest, grantsAreOpenWhileFilesAreConvertedAndClosedAfterTheEnd)
{
    auto dependencies = this->dependencies();
    const QUrl grant = platform::fileUrl(QStringLiteral("/grants/pictures"));
    dependencies.folderAccess.rememberedOriginalLocationFolder
        = [grant](const QUrl&) { return std::optional(grant); };
    makeModel(std::move(dependencies)).process(pictures({ QStringLiteral("a.png") }));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(1));
    EXPECT_EQ(m_scope->open(), QList<QUrl> { grant });
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_TRUE(m_scope->isBalanced());
}

TEST_F(ProcessingModelTest, whatACompletionFindsIsAModelAtRest)
{
    m_optimizer.letAllGo();
    auto dependencies = this->dependencies();
    const QUrl grant = platform::fileUrl(QStringLiteral("/grants/pictures"));
    dependencies.folderAccess.rememberedOriginalLocationFolder
        = [grant](const QUrl&) { return std::optional(grant); };
    makeModel(std::move(dependencies));
    bool isCalled = false;
    m_model->setOnComplete([&] {
        isCalled = true;
        EXPECT_FALSE(m_model->isProcessing());
        EXPECT_EQ(m_model->statusText(), QStringLiteral("Done"));
        EXPECT_EQ(m_statuses.constLast(), QStringLiteral("Done"));
        EXPECT_EQ(m_model->totalCount(), 0);
        EXPECT_EQ(m_recorded.size(), 2);
        // Accesses to folders end when all of this is over.
        EXPECT_EQ(m_scope->open(), QList<QUrl> { grant });
    });
    m_model->process(pictures({ QStringLiteral("a.png"), QStringLiteral("b.png") }));
    ASSERT_TRUE(runUntil([&] { return isCalled; }));
    EXPECT_TRUE(m_scope->isBalanced());
}

TEST_F(ProcessingModelTest, everyObserverOfTheEndIsToldBeforeTheCompletion)
{
    m_optimizer.letAllGo();
    makeModel();
    QStringList events;
    QObject::connect(m_model.get(), &ProcessingModel::isProcessingChanged, m_model.get(), [&] {
        events.append(m_model->isProcessing() ? QStringLiteral("begins") : QStringLiteral("ends"));
    });
    QObject::connect(m_model.get(), &ProcessingModel::statusTextChanged, m_model.get(),
        [&] { events.append(m_model->statusText()); });
    m_model->setOnComplete([&] { events.append(QStringLiteral("completes")); });
    m_model->process(pictures({ QStringLiteral("a.png") }));
    ASSERT_TRUE(runUntil([&] { return events.contains(QStringLiteral("completes")); }));
    EXPECT_EQ(events,
        QStringList({ QStringLiteral("begins"), QStringLiteral("Scanning for images..."),
            QStringLiteral("Optimizing 1 image with 1 worker..."),
            QStringLiteral("Optimized 1 of 1"), QStringLiteral("ends"), QStringLiteral("Done"),
            QStringLiteral("completes") }));
}

TEST_F(ProcessingModelTest, twoThousandFilesAreEachRecordedOnce)
{
    m_optimizer.letAllGo();
    auto dependencies = this->dependencies();
    dependencies.activeProcessorCount = 8;
    QStringList names;
    for (int i = 0; i < 2000; ++i) {
        names.append(QStringLiteral("%1.png").arg(i, 4, 10, QLatin1Char('0')));
    }
    makeModel(std::move(dependencies)).process(pictures(names));
    ASSERT_TRUE(runUntilStatus("Done"));
    QStringList recorded = m_recorded;
    recorded.sort();
    EXPECT_EQ(recorded, names);
    EXPECT_EQ(m_model->results().size(), names.size());
    EXPECT_LE(m_optimizer.mostInFlight(), 8U);
}

// Refusals

struct RefusalRow {
    const char* name;
    const char* file;
    DestinationMode destination;
    const char* status;
};

class Refusals : public test::ModelHarness, public testing::WithParamInterface<RefusalRow> { };

TEST_P(Refusals, endTheBatchWithTheirTextBeforeAnyFileIsConverted)
{
    m_settings.destinationMode = GetParam().destination;
    m_scope->refuseAll();
    ProcessingModel& model = makeModel();
    countCompletion();
    model.process(pictures({ QString::fromUtf8(GetParam().file) }));
    ASSERT_TRUE(runUntil([this] {
        if (m_panelAnswer) {
            std::exchange(m_panelAnswer, nullptr)(std::nullopt);
        }
        return m_completions > 0;
    }));
    EXPECT_EQ(m_statuses,
        QStringList(
            { QStringLiteral("Scanning for images..."), QString::fromUtf8(GetParam().status) }));
    EXPECT_FALSE(model.isProcessing());
    EXPECT_EQ(m_completions, 1);
    EXPECT_TRUE(m_optimizer.begun().isEmpty());
    EXPECT_TRUE(model.results().isEmpty());
    EXPECT_EQ(model.totalCount(), 0);
    EXPECT_TRUE(m_scope->isBalanced());
}

INSTANTIATE_TEST_SUITE_P(ProcessingModel, Refusals,
    testing::Values(RefusalRow { "nothingFound", "notes.txt", DestinationMode::originalLocation,
                        "No supported image files found" },
        RefusalRow { "noDestinationFolder", "a.png", DestinationMode::selectedFolder,
            "Choose a destination folder" },
        RefusalRow { "accessRefused", "a.png", DestinationMode::originalLocation,
            "Save permission needed" }),
    test::RowName());

TEST_F(ProcessingModelTest, aSelectedFolderThatIsThereIsNoRefusal)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    m_settings.destinationFolderURL = platform::fileUrl(QStringLiteral("/out"));
    m_scope->refuseAll();
    m_optimizer.letAllGo();
    makeModel().process(pictures({ QStringLiteral("a.png") }));
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_TRUE(m_panels.isEmpty());
}

TEST_F(ProcessingModelTest, theBatchWaitsForThePanelsAnswer)
{
    m_scope->refuseAll();
    m_optimizer.letAllGo();
    makeModel().process(pictures({ QStringLiteral("a.png") }));
    ASSERT_TRUE(runUntil([this] { return m_panelAnswer != nullptr; }));
    EXPECT_TRUE(m_model->isProcessing());
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Scanning for images..."));
    m_panelAnswer(platform::fileUrl(QStringLiteral("/pictures")));
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_model->results().size(), 1);
}

TEST_F(ProcessingModelTest, aPanelThatGoesWithoutAnAnswerIsARefusal)
{
    m_scope->refuseAll();
    makeModel().process(pictures({ QStringLiteral("a.png") }));
    ASSERT_TRUE(runUntil([this] { return m_panelAnswer != nullptr; }));
    m_panelAnswer = nullptr;
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Save permission needed"));
}

} // namespace
} // namespace vellumine
