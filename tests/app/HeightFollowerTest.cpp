#include "app/windows/HeightFollower.h"

#include "app/windows/WindowHeight.h"
#include "batch/ModelHarness.h"

#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <optional>

namespace vellumine {
namespace {

using test::runUntil;

/// A window that takes its time to grow, with a model that converts at once.
class GrowingWindow : public test::ModelHarness {
protected:
    GrowingWindow()
        : ModelHarness(test::FakeOptimizer::Mode::letGo)
    {
        m_window.setGeometry(100, 20, 820, 440);
        m_window.show();
        makeModel();
        m_follower.emplace(m_window, *m_model, std::chrono::hours(1));
    }

    /// Has so many more pictures converted.
    void convert(qsizetype count)
    {
        const qsizetype wanted = m_model->results().size() + count;
        QStringList names;
        for (qsizetype number = wanted - count; number < wanted; ++number) {
            names.append(QString::number(number) + QStringLiteral(".png"));
        }
        m_model->process(test::pictures(names));
        ASSERT_TRUE(runUntil([&] { return m_model->results().size() == wanted; }));
    }

    QWindow m_window;
    std::optional<HeightFollower> m_follower;
};

TEST_F(GrowingWindow, comesToItsFullHeightWhereAResultArrivesJustBefore)
{
    ASSERT_NO_FATAL_FAILURE(convert(visibleRows));
    const int full
        = std::min(targetHeight(visibleRows), m_window.screen()->availableGeometry().height());
    ASSERT_LT(m_window.height(), full); // it has an hour
    m_window.resize(m_window.width(), full - 1);
    ASSERT_NO_FATAL_FAILURE(convert(1));
    m_follower->setTime(std::chrono::milliseconds(1));
    EXPECT_TRUE(runUntil([&] { return m_window.height() == full; }));
}

} // namespace
} // namespace vellumine
