#pragma once

#include "batch/ConversionGroup.h"
#include "core/OptimizerSettings.h"
#include "core/ProcessingResult.h"
#include "platform/FilePath.h"
#include "support/EventLoop.h"

#include <QStringList>
#include <QThread>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>

namespace vellumine::test {

/// Stands in for the conversion. Each file stays in flight until the test lets it go, or until it
/// is interrupted, so that the test says in which order files end.
class FakeOptimizer {
public:
    enum class Mode { hold, letGo };

    explicit FakeOptimizer(Mode mode)
        : m_letAll(mode == Mode::letGo)
    {
    }

    Outcome<ProcessingResult> operator()(
        const QUrl& url, const OptimizerSettings& settings, const BatchTerms& terms)
    {
        const QString name = platform::lastPathComponent(url);
        std::unique_lock lock(m_mutex);
        m_begun.append(name);
        m_inFlight.insert(name);
        m_mostInFlight = std::max(m_mostInFlight, m_inFlight.size());
        m_settings.push_back(settings);
        m_ranOnMainThread |= QThread::currentThread() == QCoreApplication::instance()->thread();
        wakeMainThread();
        const bool letGo = m_changed.wait(
            lock, terms.interruption, [&] { return m_letAll || m_let.contains(name); });
        m_inFlight.erase(name);
        if (!letGo) {
            m_interrupted.append(name);
            return failed(CannotFinalize { url, QStringLiteral("interrupted") });
        }
        if (const auto error = m_errors.find(name); error != m_errors.end()) {
            // Made in place: GCC 12 at -O3 takes a copy on the way for uninitialised.
            return Outcome<ProcessingResult>(tl::unexpect, error->second);
        }
        ProcessingResult result;
        result.id = QUuid::createUuid();
        result.sourceURL = url;
        result.outputURL = url;
        result.originalBytes = 1000;
        result.outputBytes = 600;
        result.isSuccess = true;
        return result;
    }

    void letGo(const QString& name)
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_let.insert(name);
        }
        m_changed.notify_all();
    }

    void letAllGo()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_letAll = true;
        }
        m_changed.notify_all();
    }

    void fail(const QString& name, const OptimizeError& error)
    {
        const std::scoped_lock lock(m_mutex);
        m_errors.insert_or_assign(name, error);
    }

    /// Lets the event loop run until so many files have begun.
    [[nodiscard]] bool waitUntilBegun(qsizetype count) const
    {
        return runUntil([&] { return begun().size() >= count; });
    }

    /// Names in the order in which the conversions began.
    [[nodiscard]] QStringList begun() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_begun;
    }
    [[nodiscard]] QStringList interrupted() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_interrupted;
    }
    [[nodiscard]] std::size_t mostInFlight() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_mostInFlight;
    }
    [[nodiscard]] std::vector<OptimizerSettings> settings() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_settings;
    }
    [[nodiscard]] bool ranOnMainThread() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_ranOnMainThread;
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable_any m_changed;
    bool m_letAll;
    std::set<QString> m_let;
    std::map<QString, OptimizeError> m_errors;
    QStringList m_begun;
    QStringList m_interrupted;
    std::multiset<QString> m_inFlight;
    std::size_t m_mostInFlight = 0;
    std::vector<OptimizerSettings> m_settings;
    bool m_ranOnMainThread = false;
};

} // namespace vellumine::test
