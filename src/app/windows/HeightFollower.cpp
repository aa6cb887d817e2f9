#include "app/windows/HeightFollower.h"

#include "app/windows/WindowHeight.h"
#include "batch/ProcessingModel.h"

#include <QScreen>
#include <QWindow>

#include <utility>

namespace vellumine {

HeightFollower::HeightFollower(
    QWindow& window, const ProcessingModel& model, std::chrono::milliseconds time, QObject* parent)
    : QObject(parent)
    , m_window(window)
{
    setTime(time);
    m_growing.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_growing, &QVariantAnimation::valueChanged, this,
        [this](const QVariant& frame) { m_window.setGeometry(frame.toRect()); });
    connect(&model, &ProcessingModel::resultInserted, this,
        [this, &model] { follow(model.results().size()); });
    follow(model.results().size());
}

void HeightFollower::setTime(std::chrono::milliseconds time)
{
    m_growing.setDuration(static_cast<int>(time.count()));
}

void HeightFollower::follow(qsizetype resultCount)
{
    if (std::exchange(m_resultCount, resultCount) == resultCount) {
        return;
    }
    // The user's own choice of a whole screen stands.
    const auto states = m_window.windowStates();
    if (states.testFlag(Qt::WindowMaximized) || states.testFlag(Qt::WindowFullScreen)) {
        return;
    }
    m_growing.stop();
    const auto frame
        = frameForResults(m_window.geometry(), resultCount, m_window.screen()->availableGeometry());
    if (!frame) {
        return;
    }
    if (m_growing.duration() == 0 || !m_window.isVisible()) {
        m_window.setGeometry(*frame);
        return;
    }
    m_growing.setStartValue(m_window.geometry());
    m_growing.setEndValue(*frame);
    m_growing.start();
}

} // namespace vellumine
