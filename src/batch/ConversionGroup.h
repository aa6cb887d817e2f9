#pragma once

#include "core/OptimizerSettings.h"
#include "core/ProcessingResult.h"
#include "pipeline/ConversionEnvironment.h"
#include "pipeline/ConversionQueue.h"

#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <stop_token>

class QThreadPool;

namespace vellumine {

/// What the conversions of one batch have in common.
struct BatchTerms {
    /// A requested stop asks a conversion to give up early and to leave nothing behind; what it
    /// answers then is recorded like any other outcome.
    std::stop_token interruption;
    std::shared_ptr<const NeededFiles> neededFiles;
};

/// Converts one file; runs on several threads at once.
using Optimize = std::function<Outcome<ProcessingResult>(
    const QUrl& url, const OptimizerSettings& settings, const BatchTerms& terms)>;

/// The pipeline's conversion in the environment, whose terms are the batch's.
[[nodiscard]] Optimize optimizeIn(ConversionEnvironment environment);

/// The conversions of one batch on the threads of a pool, a bounded number of them at once, the
/// next file as one ends. Lives on one thread, where its signals come; the pool must have ended its
/// work before this object does.
class ConversionGroup final : public QObject {
    Q_OBJECT

public:
    ConversionGroup(std::shared_ptr<ConversionQueue> queue, OptimizerSettings settings,
        Optimize optimize, QThreadPool& pool, QObject* parent);

    /// Begins. At most `workerCount` conversions are in flight at one time.
    void start(qsizetype workerCount);

    /// Begins no further file. Those in flight end as they would.
    void stop();

    /// Begins no further file and asks those in flight to give up.
    void interrupt();

Q_SIGNALS:
    /// A file has ended, well or not. The next one begins after everybody has heard of it.
    void converted(const vellumine::ProcessingResult& result);
    /// Nothing is in flight and nothing will be.
    void ended();

private:
    void beginWhatMay();
    void begin(std::size_t position);
    void finish(std::size_t position, const ProcessingResult& result);

    std::shared_ptr<ConversionQueue> m_queue;
    std::shared_ptr<const OptimizerSettings> m_settings;
    std::shared_ptr<const Optimize> m_optimize;
    QThreadPool& m_pool;
    std::stop_source m_interruption;
    qsizetype m_workerCount = 0;
    qsizetype m_inFlight = 0;
    bool m_isStopped = false;
};

} // namespace vellumine
