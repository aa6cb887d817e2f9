#pragma once

#include "batch/ConversionGroup.h"
#include "batch/FolderAccessGrants.h"
#include "core/OptimizerSettings.h"
#include "core/ProcessingResult.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vellumine {

/// Turns dropped files and folders into finished batches: waits for drops that come close together,
/// finds the pictures, sees to it that outputs may be written, converts them in parallel, publishes
/// and records each outcome.
///
/// Everything here belongs to the thread that made it, and all that is published changes there.
/// Nothing here blocks that thread but the destructor.
class ProcessingModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isProcessing READ isProcessing NOTIFY isProcessingChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    Q_PROPERTY(qsizetype finishedCount READ finishedCount NOTIFY progressChanged)
    Q_PROPERTY(qsizetype totalCount READ totalCount NOTIFY progressChanged)

public:
    static constexpr std::chrono::milliseconds debounceTime { 150 };

    /// What the model needs from the program around it. The functions are called on the model's
    /// thread, but for `optimize`.
    struct Dependencies {
        /// The options of a batch, taken once at its start.
        std::function<OptimizerSettings()> snapshot;
        /// Hears of every outcome, once.
        std::function<void(const ProcessingResult&)> record;
        Optimize optimize;
        FolderAccessGrants::Dependencies folderAccess;
        int activeProcessorCount = 1;
        std::chrono::milliseconds debounce = debounceTime;
    };

    explicit ProcessingModel(Dependencies dependencies, QObject* parent = nullptr);

    /// Asks conversions in flight to give up and waits until they have ended; their outcomes are
    /// lost. None of them may wait for this thread then.
    ~ProcessingModel() override;

    /// A batch is running.
    [[nodiscard]] bool isProcessing() const { return m_isProcessing; }
    /// Every outcome since the start, newest first.
    [[nodiscard]] const QList<ProcessingResult>& results() const { return m_results; }
    /// One line about what goes on.
    [[nodiscard]] const QString& statusText() const { return m_statusText; }
    /// Files of the running batch that have ended, and all of them; 0 of 0 when none is converted.
    [[nodiscard]] qsizetype finishedCount() const { return m_finishedCount; }
    [[nodiscard]] qsizetype totalCount() const { return m_totalCount; }

    /// What to call, once, when a batch has ended and no other one follows, whatever it ended with:
    /// done, refused or stopped. Nothing to take it back.
    void setOnComplete(std::function<void()> onComplete);

    /// Takes dropped or opened files and folders. They join the next batch: at once where none is
    /// running, but for the wait that each further drop starts anew.
    void process(const QList<QUrl>& urls);

    /// Begins no further file of the running batch. Those in flight end as they would and are
    /// recorded, the rest stays untouched, and the batch ends with "Stopped after". Drops that came
    /// meanwhile are no part of it: they are the next batch. Where no batch is running, drops that
    /// wait for more of them are one that was stopped before it began.
    void stop();

    /// Stops the running batch and asks the conversions in flight to give up; each of them is
    /// recorded as what it ended with.
    void interrupt();

    /// Drops the running batch and what waits to be one: outcomes are no longer collected,
    /// conversions in flight are asked to give up, and nothing is published or called any more. For
    /// a program that is about to end: after a batch that was dropped the model begins no other.
    void cancel();

Q_SIGNALS:
    void isProcessingChanged();
    void statusTextChanged();
    void progressChanged();
    /// The result now stands in front of all others.
    void resultInserted(const vellumine::ProcessingResult& result);

private:
    struct Batch;
    struct ExpandedDrop;

    qsizetype enqueueInputURLs(const QList<QUrl>& urls);
    void schedulePendingBatch();
    void startPendingBatch();
    void processExpandedBatch(const ExpandedDrop& files);
    void processPermittedBatch(const std::optional<QList<QUrl>>& grants);
    void processInParallel(qsizetype workerCount);
    void collect(const ProcessingResult& result);
    void finishConversions();
    void completeBatch(const QString& status);
    void publishCompletion(const QString& status);
    void stopWaiting();
    void dropPendingInputs();
    [[nodiscard]] QString stoppedText() const;

    void setStatusText(const QString& text);
    void setProgress(qsizetype finished, qsizetype total);

    Dependencies m_dependencies;
    FolderAccessGrants m_folderAccess;
    QTimer m_debounce;
    QThreadPool m_pool;

    bool m_isProcessing = false;
    QList<ProcessingResult> m_results;
    QString m_statusText;
    qsizetype m_finishedCount = 0;
    qsizetype m_totalCount = 0;
    std::function<void()> m_onComplete;

    QList<QUrl> m_pendingInputURLs;
    QSet<QByteArray> m_pendingInputKeys; ///< their standardised paths
    std::unique_ptr<Batch> m_batch; ///< the running one
};

} // namespace vellumine
