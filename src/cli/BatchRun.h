#pragma once

#include "cli/InputFiles.h"
#include "core/OptimizerSettings.h"
#include "core/ProcessingResult.h"
#include "pipeline/ConversionEnvironment.h"
#include "pipeline/ConversionQueue.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <vector>

namespace vellumine::cli {

/// Converts files side by side on threads of its own, reporting on the thread that made it, whose
/// event loop has to run.
class BatchRun {
public:
    using OnResult = std::function<void(const ProcessingResult&)>;
    using OnFinished = std::function<void()>;

    BatchRun(const std::vector<InputFile>& files, OptimizerSettings settings,
        ConversionEnvironment environment);

    /// Starts; calls `onResult` for every file in the order of finishing, then `onFinished`.
    void start(OnResult onResult, OnFinished onFinished);

private:
    void fillWorkers();
    void startNext(std::size_t index);
    void take(std::size_t index, const ProcessingResult& result);

    OptimizerSettings m_settings;
    ConversionEnvironment m_environment;
    std::vector<QUrl> m_nameless; ///< files whose names cannot be handed on
    ConversionQueue m_queue;
    std::size_t m_workers;
    std::size_t m_running = 0;
    std::size_t m_finished = 0;
    OnResult m_onResult;
    OnFinished m_onFinished;
    QObject m_context; ///< results are delivered to its thread
    QThreadPool m_pool; ///< last: its threads end first
};

} // namespace vellumine::cli
