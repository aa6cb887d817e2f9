#pragma once

#include <QObject>
#include <QVariantAnimation>

#include <chrono>

class QWindow;

namespace vellumine {

class ProcessingModel;

/// Grows the main window with the number of results.
class HeightFollower final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds growingTime { 200 };

    /// Begins with the results that there are. Both have to outlive it; with no time for it the
    /// window grows at once.
    HeightFollower(QWindow& window, const ProcessingModel& model,
        std::chrono::milliseconds time = growingTime, QObject* parent = nullptr);

    /// How long it grows from now on.
    void setTime(std::chrono::milliseconds time);

private:
    void follow(qsizetype resultCount);

    QWindow& m_window;
    QVariantAnimation m_growing;
    qsizetype m_resultCount = -1; ///< that was followed last
};

} // namespace vellumine
