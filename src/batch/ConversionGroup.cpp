#include "batch/ConversionGroup.h"

#include "batch/Deliver.h"
#include "pipeline/ImageOptimizer.h"

#include <QThreadPool>
#include <QtConcurrentRun>

#include <cerrno>
#include <new>
#include <utility>

namespace vellumine {
namespace {

/// The outcome of one file, whatever happens: a batch goes on when memory runs out for one picture.
ProcessingResult convert(const Optimize& optimize, const QUrl& url,
    const OptimizerSettings& settings, const BatchTerms& terms) noexcept
{
    try {
        const Outcome<ProcessingResult> outcome = optimize(url, settings, terms);
        return outcome ? *outcome : failureResult(url, outcome.error());
    } catch (const std::bad_alloc&) {
        return failureResult(url, platform::FileError::fromErrno(ENOMEM));
    }
}

} // namespace

Optimize optimizeIn(ConversionEnvironment environment)
{
    return [environment = std::move(environment)](
               const QUrl& url, const OptimizerSettings& settings, const BatchTerms& terms) {
        ConversionEnvironment current = environment;
        current.interruption = terms.interruption;
        current.neededFiles = terms.neededFiles;
        return ImageOptimizer::optimize(url, settings, current);
    };
}

ConversionGroup::ConversionGroup(std::shared_ptr<ConversionQueue> queue, OptimizerSettings settings,
    Optimize optimize, QThreadPool& pool, QObject* parent)
    : QObject(parent)
    , m_queue(std::move(queue))
    , m_settings(std::make_shared<const OptimizerSettings>(std::move(settings)))
    , m_optimize(std::make_shared<const Optimize>(std::move(optimize)))
    , m_pool(pool)
{
}

void ConversionGroup::start(qsizetype workerCount)
{
    m_workerCount = workerCount;
    beginWhatMay();
}

void ConversionGroup::stop()
{
    m_isStopped = true;
}

void ConversionGroup::interrupt()
{
    stop();
    m_interruption.request_stop();
}

void ConversionGroup::beginWhatMay()
{
    while (!m_isStopped && m_inFlight < m_workerCount) {
        const std::optional<std::size_t> position = m_queue->takeNext();
        if (!position) {
            break;
        }
        ++m_inFlight;
        begin(*position);
    }
    if (m_inFlight == 0) {
        Q_EMIT ended();
    }
}

void ConversionGroup::begin(std::size_t position)
{
    const auto future = QtConcurrent::run(&m_pool,
        [optimize = m_optimize, settings = m_settings, url = m_queue->url(position),
            terms = BatchTerms { m_interruption.get_token(), m_queue->neededFiles() }] {
            return convert(*optimize, url, *settings, terms);
        });
    deliver(future, this,
        [this, position](const ProcessingResult& result) { finish(position, result); });
}

void ConversionGroup::finish(std::size_t position, const ProcessingResult& result)
{
    m_queue->finished(position, result.outputURL);
    Q_EMIT converted(result);
    --m_inFlight;
    beginWhatMay();
}

} // namespace vellumine
