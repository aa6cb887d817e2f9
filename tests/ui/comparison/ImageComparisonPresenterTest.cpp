#include "ui/comparison/ImageComparisonPresenter.h"

#include "platform/FilePath.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"
#include "ui/results/Results.h"

#include <QCoreApplication>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QScreen>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace vellumine {
namespace {

class ImageComparisonPresenterTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    }

    QUrl write(const char* name, QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::red);
        const auto path = m_folder / name;
        EXPECT_TRUE(image.save(QString::fromStdString(path.string()), "png"));
        return platform::fileUrl(path);
    }

    ProcessingResult resultOf(const QUrl& source, const QUrl& output)
    {
        ProcessingResult result = test::success(2, 1);
        result.sourceURL = source;
        result.outputURL = output;
        return result;
    }

    ProcessingResult someResult()
    {
        return resultOf(write("a.png", { 300, 200 }), write("b.png", { 900, 700 }));
    }

    test::TemporaryFolder m_folder;
    QList<QUrl> m_revealed;
    QQmlEngine m_engine;
    ImageComparisonPresenter m_presenter { m_engine,
        { .reveal = [this](const QUrl& file) { m_revealed.append(file); } } };
};

TEST_F(ImageComparisonPresenterTest, opensAWindowForTheTwoFiles)
{
    const ProcessingResult result = someResult();
    m_presenter.show(result, *result.outputURL);
    ASSERT_EQ(m_presenter.openWindows().size(), 1U);
    const QQuickWindow& window = *m_presenter.openWindows().front();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.title(), QStringLiteral("Review b.png"));
    EXPECT_EQ(window.objectName(), QStringLiteral("VellumineComparisonWindow"));
    // the title bar is the window's own
    const int bar = window.property("titleBarHeight").toInt();
    EXPECT_TRUE(window.minimumSize() == QSize(560, 420 + bar));
    EXPECT_TRUE(window.size() == QSize(760, 420 + bar)) << window.height();
    EXPECT_LE((window.geometry().center() - window.screen()->availableGeometry().center())
                  .manhattanLength(),
        2);
    EXPECT_TRUE(m_revealed.isEmpty());
}

TEST_F(ImageComparisonPresenterTest, theWindowShowsThePictures)
{
    const ProcessingResult result = someResult();
    m_presenter.show(result, *result.outputURL);
    QQuickWindow& window = *m_presenter.openWindows().front();
    QCoreApplication::processEvents(); // lays it out
    const QImage shot = window.grabWindow();
    const auto* canvas = window.findChild<QQuickItem*>(QStringLiteral("canvas"));
    ASSERT_NE(canvas, nullptr);
    const QPointF middle = canvas->mapToScene({ canvas->width() / 2, canvas->height() / 2 });
    for (const QPointF offset : { QPointF(-100, 50), QPointF(100, 50) }) {
        EXPECT_TRUE(shot.pixelColor((middle + offset).toPoint()) == QColor(Qt::red)) << offset.x();
    }
}

TEST_F(ImageComparisonPresenterTest, theSameResultTwiceGivesTwoWindowsAndClosingOneLeavesTheOther)
{
    const ProcessingResult result = someResult();
    m_presenter.show(result, *result.outputURL);
    m_presenter.show(result, *result.outputURL);
    ASSERT_EQ(m_presenter.openWindows().size(), 2U);
    const QPointer<QQuickWindow> first = m_presenter.openWindows().front().get();
    const QPointer<QQuickWindow> second = m_presenter.openWindows().back().get();
    EXPECT_NE(first, second);

    first->close();
    ASSERT_EQ(m_presenter.openWindows().size(), 1U);
    EXPECT_EQ(m_presenter.openWindows().front().get(), second);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    EXPECT_TRUE(second->isVisible());
}

TEST_F(ImageComparisonPresenterTest, usesTheSamplesThatTheConversionWrote)
{
    ProcessingResult result = resultOf(
        platform::fileUrl(m_folder / "trashed.jpg"), platform::fileUrl(m_folder / "moved.webp"));
    result.comparisonPreview = ComparisonPreview {
        .sourceSampleURL = write("s.png", { 400, 300 }),
        .outputSampleURL = write("o.png", { 400, 300 }),
        .sourceName = QStringLiteral("trashed.jpg"),
        .outputName = QStringLiteral("moved.webp"),
        .sourcePixelSize = { 4000, 3000 },
        .outputPixelSize = { 2000, 1500 },
        .displaySize = { 400, 300 },
    };
    m_presenter.show(result, *result.outputURL);
    ASSERT_EQ(m_presenter.openWindows().size(), 1U);
    // and once more after it was closed: the samples are the program's until its end
    m_presenter.openWindows().front()->close();
    m_presenter.show(result, *result.outputURL);
    EXPECT_EQ(m_presenter.openWindows().size(), 1U);
    EXPECT_TRUE(m_revealed.isEmpty());
}

TEST_F(ImageComparisonPresenterTest, opensFilesAsItIsTold)
{
    std::vector<std::filesystem::path> opened;
    ImageComparisonPresenter presenter(m_engine,
        { .reveal = [this](const QUrl& file) { m_revealed.append(file); },
            .openImage =
                [&opened](const std::filesystem::path& path, const imaging::Limits& limits,
                    const std::stop_token& interruption) {
                    opened.push_back(path);
                    return openHere(path, limits, interruption);
                } });
    const ProcessingResult result = someResult();
    presenter.show(result, *result.outputURL);
    EXPECT_EQ(presenter.openWindows().size(), 1);
    const std::vector<std::filesystem::path> both { m_folder / "a.png", m_folder / "b.png" };
    EXPECT_EQ(opened, both);
}

TEST_F(ImageComparisonPresenterTest, revealsTheOutputWhereThereIsNothingToCompare)
{
    const QUrl output = platform::fileUrl(m_folder / "gone.webp");
    m_presenter.show(resultOf(write("a.png", { 30, 20 }), output), output);
    EXPECT_TRUE(m_presenter.openWindows().empty());
    EXPECT_EQ(m_revealed, QList<QUrl> { output });

    ProcessingResult withoutSamples = someResult();
    withoutSamples.comparisonPreview = ComparisonPreview {};
    m_presenter.show(withoutSamples, *withoutSamples.outputURL);
    EXPECT_TRUE(m_presenter.openWindows().empty());
    EXPECT_EQ(m_revealed.size(), 2);
}

TEST_F(ImageComparisonPresenterTest, takesItsWindowsAlong)
{
    QPointer<QQuickWindow> window;
    {
        ImageComparisonPresenter presenter(m_engine, { .reveal = [](const QUrl&) {} });
        const ProcessingResult result = someResult();
        presenter.show(result, *result.outputURL);
        presenter.show(result, *result.outputURL);
        window = presenter.openWindows().front().get();
    }
    EXPECT_TRUE(window.isNull());
}

TEST_F(ImageComparisonPresenterTest, passesOnWhatTheWindowsMenuAsksFor)
{
    const ProcessingResult result = someResult();
    m_presenter.show(result, *result.outputURL);
    const QSignalSpy preferences(&m_presenter, &ImageComparisonPresenter::preferencesRequested);
    const QSignalSpy quit(&m_presenter, &ImageComparisonPresenter::quitRequested);
    QQuickWindow* window = m_presenter.openWindows().front().get();
    QMetaObject::invokeMethod(window, "preferencesRequested");
    QMetaObject::invokeMethod(window, "quitRequested");
    EXPECT_EQ(preferences.size(), 1);
    EXPECT_EQ(quit.size(), 1);
}

} // namespace
} // namespace vellumine
