#include "cli/BatchRun.h"

#include "pipeline/ImageOptimizer.h"

#include <QThread>
#include <QTimer>
#include <QtConcurrent>

#include <algorithm>
#include <utility>

namespace vellumine::cli {

namespace {

std::vector<QUrl> urlsOf(const std::vector<InputFile>& files, InputFile::Name name)
{
    std::vector<QUrl> urls;
    for (const InputFile& file : files) {
        if (file.name == name) {
            urls.push_back(file.url);
        }
    }
    return urls;
}

ProcessingResult converted(
    const QUrl& url, const OptimizerSettings& settings, const ConversionEnvironment& environment)
{
    auto outcome = ImageOptimizer::optimize(url, settings, environment);
    return outcome ? std::move(*outcome) : failureResult(url, outcome.error());
}

} // namespace

BatchRun::BatchRun(const std::vector<InputFile>& files, OptimizerSettings settings,
    ConversionEnvironment environment)
    : m_settings(std::move(settings))
    , m_environment(std::move(environment))
    , m_nameless(urlsOf(files, InputFile::Name::NotText))
    , m_queue(urlsOf(files, InputFile::Name::Text), m_settings)
    , m_workers(std::min<std::size_t>(
          static_cast<std::size_t>(std::max(QThread::idealThreadCount(), 2)), m_queue.size()))
{
    m_pool.setMaxThreadCount(std::max(1, static_cast<int>(m_workers)));
}

void BatchRun::start(OnResult onResult, OnFinished onFinished)
{
    m_onResult = std::move(onResult);
    m_onFinished = std::move(onFinished);
    QTimer::singleShot(0, &m_context, [this] {
        for (const QUrl& url : m_nameless) {
            m_onResult(failureResult(url, ImageOptimizerError(UnreadableImage {})));
        }
        if (m_queue.size() == 0) {
            m_onFinished();
        }
        fillWorkers();
    });
}

void BatchRun::fillWorkers()
{
    while (m_running < m_workers) {
        const auto index = m_queue.takeNext();
        if (!index) {
            return;
        }
        startNext(*index);
    }
}

void BatchRun::startNext(std::size_t index)
{
    ++m_running;
    const QUrl url = m_queue.url(index);
    QtConcurrent::run(&m_pool, [this, url] {
        return converted(url, m_settings, m_environment);
    }).then(&m_context, [this, index](const ProcessingResult& result) { take(index, result); });
}

void BatchRun::take(std::size_t index, const ProcessingResult& result)
{
    --m_running;
    ++m_finished;
    m_queue.finished(index);
    m_onResult(result);
    if (m_finished == m_queue.size()) {
        m_onFinished();
        return;
    }
    fillWorkers();
}

} // namespace vellumine::cli
