#pragma once

#include <QObject>
#include <QRect>
#include <QVariantAnimation>

#include <chrono>
#include <optional>

class QWindow;

namespace vellumine {

class ProcessingModel;

/// Grows the main window with the number of results. While it fills a screen it is left alone, and
/// grows when it is restored.
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
    void grow();
    void catchUp();

    QWindow& m_window;
    QVariantAnimation m_growing;
    qsizetype m_resultCount = -1; ///< of which was heard last
    std::optional<QRect> m_waitingIn; ///< where it filled a screen and should have grown
};

} // namespace vellumine
