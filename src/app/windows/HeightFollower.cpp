#include "app/windows/HeightFollower.h"

#include "app/windows/ScreenFilling.h"
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
    // Queued, so that all of a new geometry was announced before there is another one.
    connect(&m_window, &QWindow::windowStateChanged, this, &HeightFollower::catchUp,
        Qt::QueuedConnection);
    for (const auto sizeChanged : { &QWindow::widthChanged, &QWindow::heightChanged }) {
        connect(&m_window, sizeChanged, this, &HeightFollower::catchUp, Qt::QueuedConnection);
    }
    follow(model.results().size());
}

void HeightFollower::setTime(std::chrono::milliseconds time)
{
    m_growing.setDuration(static_cast<int>(time.count()));
}

void HeightFollower::follow(qsizetype resultCount)
{
    if (std::exchange(m_resultCount, resultCount) != resultCount) {
        grow();
    }
}

/// A window that is restored has its own size back before or after it is told so.
void HeightFollower::catchUp()
{
    if (m_waitingIn && !fillsScreen(m_window) && m_window.geometry() != *m_waitingIn) {
        grow();
    }
}

void HeightFollower::grow()
{
    // The user's own choice of a whole screen stands.
    if (fillsScreen(m_window)) {
        m_waitingIn = m_window.geometry();
        return;
    }
    m_waitingIn.reset();
    // One that grows is as high already as it will be.
    const bool isGrowing = m_growing.state() == QVariantAnimation::Running;
    const auto frame
        = frameForResults(isGrowing ? m_growing.endValue().toRect() : m_window.geometry(),
            m_resultCount, m_window.screen()->availableGeometry());
    if (!frame) {
        return;
    }
    m_growing.stop();
    if (m_growing.duration() == 0 || !m_window.isVisible()) {
        m_window.setGeometry(*frame);
        return;
    }
    m_growing.setStartValue(m_window.geometry());
    m_growing.setEndValue(*frame);
    m_growing.start();
}

} // namespace vellumine
