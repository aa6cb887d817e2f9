#include "batch/ProcessingModel.h"

#include "batch/Deliver.h"
#include "batch/FileInputResolver.h"
#include "batch/LeftoverOutputs.h"
#include "platform/FilePath.h"
#include "platform/SecurityScope.h"

#include <QThread>
#include <QtConcurrentRun>

#include <algorithm>
#include <utility>
#include <vector>

namespace vellumine {

/// The pictures that a drop led to, and the order in which they may begin.
struct ProcessingModel::ExpandedDrop {
    QList<QUrl> urls;
    std::shared_ptr<ConversionQueue> queue;
};

/// What lives as long as one batch.
struct ProcessingModel::Batch {
    enum class Ending { regular, stopped, cancelled };

    OptimizerSettings settings;
    std::stop_source stop; ///< of scanning, and of asking for folders
    Ending ending = Ending::regular;
    ExpandedDrop files;
    ConversionGroup* conversions = nullptr; ///< a child of the model; none before converting
    std::vector<std::unique_ptr<platform::ScopedAccess>> folders; ///< that are open for writing
};

ProcessingModel::ProcessingModel(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(std::move(dependencies))
    , m_folderAccess(m_dependencies.folderAccess)
    , m_debounce(this)
    , m_statusText(tr("Drop images here"))
{
    m_debounce.setSingleShot(true);
    m_debounce.setTimerType(Qt::PreciseTimer);
    m_debounce.setInterval(m_dependencies.debounce);
    connect(&m_debounce, &QTimer::timeout, this, &ProcessingModel::startPendingBatch);
}

ProcessingModel::~ProcessingModel()
{
    cancel();
    m_pool.waitForDone();
}

void ProcessingModel::setOnComplete(std::function<void()> onComplete)
{
    m_onComplete = std::move(onComplete);
}

void ProcessingModel::process(const QList<QUrl>& urls)
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (enqueueInputURLs(urls) == 0) {
        setStatusText(tr("No supported image files found"));
    } else if (!m_isProcessing) {
        schedulePendingBatch();
    }
}

qsizetype ProcessingModel::enqueueInputURLs(const QList<QUrl>& urls)
{
    const qsizetype before = m_pendingInputURLs.size();
    for (const QUrl& url : urls) {
        const QByteArray key = platform::standardizedPath(url);
        if (!m_pendingInputKeys.contains(key)) {
            m_pendingInputKeys.insert(key);
            m_pendingInputURLs.append(url);
        }
    }
    return m_pendingInputURLs.size() - before;
}

void ProcessingModel::schedulePendingBatch()
{
    m_debounce.start();
}

void ProcessingModel::startPendingBatch()
{
    if (m_isProcessing || m_pendingInputURLs.isEmpty()) {
        return;
    }
    const QList<QUrl> urls = std::exchange(m_pendingInputURLs, {});
    m_pendingInputKeys.clear();
    m_isProcessing = true;
    Q_EMIT isProcessingChanged();
    setStatusText(tr("Scanning for images..."));
    m_batch = std::make_unique<Batch>();
    m_batch->settings = m_dependencies.snapshot();
    const auto future = QtConcurrent::run(&m_pool,
        [urls, settings = m_batch->settings, stop = m_batch->stop.get_token(),
            scope = m_dependencies.folderAccess.securityScope] {
            const QList<QUrl> found = FileInputResolver::imageURLs(urls, *scope, stop);
            removeLeftoverOutputs(found, settings);
            return ExpandedDrop { found,
                std::make_shared<ConversionQueue>(
                    std::vector<QUrl>(found.begin(), found.end()), settings) };
        });
    deliver(future, this, [this](const ExpandedDrop& files) { processExpandedBatch(files); });
}

void ProcessingModel::processExpandedBatch(const ExpandedDrop& files)
{
    switch (m_batch->ending) {
    case Batch::Ending::cancelled:
        return;
    case Batch::Ending::stopped:
        // How many files there are was not found out to the end: the part that was is no total.
        finishConversions();
        return;
    case Batch::Ending::regular:
        break;
    }
    if (files.urls.isEmpty()) {
        completeBatch(tr("No supported image files found"));
        return;
    }
    const OptimizerSettings& settings = m_batch->settings;
    if (settings.destinationMode == DestinationMode::selectedFolder
        && !settings.destinationFolderURL) {
        completeBatch(tr("Choose a destination folder"));
        return;
    }
    m_batch->files = files;
    setProgress(0, files.urls.size());
    m_folderAccess.requestOriginalLocationAccessIfNeeded(
        files.urls, settings,
        [this](const std::optional<QList<QUrl>>& grants) { processPermittedBatch(grants); },
        m_batch->stop.get_token());
}

void ProcessingModel::processPermittedBatch(const std::optional<QList<QUrl>>& grants)
{
    switch (m_batch->ending) {
    case Batch::Ending::cancelled:
        return;
    case Batch::Ending::stopped:
        finishConversions();
        return;
    case Batch::Ending::regular:
        break;
    }
    if (!grants) {
        completeBatch(tr("Save permission needed"));
        return;
    }
    for (const QUrl& grant : *grants) {
        m_batch->folders.push_back(std::make_unique<platform::ScopedAccess>(
            *m_dependencies.folderAccess.securityScope, grant));
    }
    const qsizetype count = m_totalCount;
    const qsizetype workers
        = std::min<qsizetype>(std::max(m_dependencies.activeProcessorCount, 2), count);
    // There is one worker exactly when there is one image.
    setStatusText(count == 1
            ? tr("Optimizing 1 image with 1 worker...")
            : tr("Optimizing %1 images with %2 workers...").arg(count).arg(workers));
    processInParallel(workers);
}

void ProcessingModel::processInParallel(qsizetype workerCount)
{
    m_pool.setMaxThreadCount(static_cast<int>(workerCount));
    auto* conversions = new ConversionGroup(
        m_batch->files.queue, m_batch->settings, m_dependencies.optimize, m_pool, this);
    m_batch->conversions = conversions;
    connect(conversions, &ConversionGroup::converted, this, &ProcessingModel::collect);
    connect(conversions, &ConversionGroup::ended, this, &ProcessingModel::finishConversions);
    conversions->start(workerCount);
}

void ProcessingModel::collect(const ProcessingResult& result)
{
    if (m_batch->ending == Batch::Ending::cancelled) {
        return;
    }
    m_results.prepend(result);
    setProgress(m_finishedCount + 1, m_totalCount);
    Q_EMIT resultInserted(result);
    m_dependencies.record(result);
    setStatusText(tr("Optimized %1 of %2").arg(m_finishedCount).arg(m_totalCount));
}

void ProcessingModel::finishConversions()
{
    if (m_batch->ending == Batch::Ending::cancelled) {
        m_batch->folders.clear();
        return;
    }
    const bool isWhole = m_totalCount > 0 && m_finishedCount == m_totalCount;
    completeBatch(isWhole ? tr("Done") : stoppedText());
}

void ProcessingModel::completeBatch(const QString& status)
{
    // The conversions may be what called: they go when they have returned. The accesses to the
    // folders end with the batch, on every way out of here.
    const std::unique_ptr<Batch> batch = std::move(m_batch);
    if (batch->conversions != nullptr) {
        batch->conversions->deleteLater();
    }
    m_isProcessing = false;
    Q_EMIT isProcessingChanged();
    setProgress(0, 0);
    if (!m_pendingInputURLs.isEmpty()) {
        startPendingBatch();
        return;
    }
    publishCompletion(status);
}

void ProcessingModel::publishCompletion(const QString& status)
{
    setStatusText(status);
    if (const auto onComplete = std::exchange(m_onComplete, nullptr)) {
        onComplete();
    }
}

void ProcessingModel::stop()
{
    if (!m_batch) {
        stopWaiting();
        return;
    }
    if (m_batch->ending == Batch::Ending::cancelled) {
        return;
    }
    m_batch->ending = Batch::Ending::stopped;
    m_batch->stop.request_stop();
    if (m_batch->conversions) {
        m_batch->conversions->stop();
    }
}

void ProcessingModel::interrupt()
{
    stop();
    if (m_batch && m_batch->conversions) {
        m_batch->conversions->interrupt();
    }
}

void ProcessingModel::cancel()
{
    dropPendingInputs();
    if (!m_batch) {
        return;
    }
    m_batch->ending = Batch::Ending::cancelled;
    m_batch->stop.request_stop();
    if (m_batch->conversions) {
        m_batch->conversions->interrupt();
    }
}

void ProcessingModel::stopWaiting()
{
    if (!m_pendingInputURLs.isEmpty()) {
        dropPendingInputs();
        publishCompletion(stoppedText());
    }
}

void ProcessingModel::dropPendingInputs()
{
    m_debounce.stop();
    m_pendingInputURLs.clear();
    m_pendingInputKeys.clear();
}

QString ProcessingModel::stoppedText() const
{
    return tr("Stopped after %1 of %2").arg(m_finishedCount).arg(m_totalCount);
}

void ProcessingModel::setStatusText(const QString& text)
{
    if (m_statusText != text) {
        m_statusText = text;
        Q_EMIT statusTextChanged();
    }
}

void ProcessingModel::setProgress(qsizetype finished, qsizetype total)
{
    if (m_finishedCount != finished || m_totalCount != total) {
        m_finishedCount = finished;
        m_totalCount = total;
        Q_EMIT progressChanged();
    }
}

} // namespace vellumine
