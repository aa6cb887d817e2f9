#pragma once

#include "FakeOptimizer.h"
#include "RecordingScope.h"
#include "batch/ProcessingModel.h"
#include "platform/FilePath.h"
#include "support/EventLoop.h"
#include "support/QtPrinters.h"

#include <QTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace vellumine::test {

/// File URLs of names in a folder that does not exist: names alone decide what is taken.
inline QList<QUrl> pictures(const QStringList& names)
{
    QList<QUrl> urls;
    for (const QString& name : names) {
        urls.append(platform::fileUrl(QStringLiteral("/pictures/") + name));
    }
    return urls;
}

/// A model with fakes all around it, and what was seen of it.
class ModelHarness : public testing::Test {
protected:
    explicit ModelHarness(FakeOptimizer::Mode mode = FakeOptimizer::Mode::hold)
        : m_optimizer(mode)
    {
    }

    ~ModelHarness() override
    {
        EXPECT_TRUE(m_everythingOnMainThread);
        EXPECT_FALSE(m_optimizer.ranOnMainThread());
    }

    /// Dependencies of a model that starts batches without waiting for more drops.
    ProcessingModel::Dependencies dependencies()
    {
        return {
            .snapshot =
                [this] {
                    ++m_snapshots;
                    return m_settings;
                },
            .record = [this](const ProcessingResult& result) {
                checkThread();
                m_recorded.append(nameOf(result));
            },
            .optimize = [this](const QUrl& url, const OptimizerSettings& settings,
                            const BatchTerms& terms) {
                return m_optimizer(url, settings, terms);
            },
            .folderAccess = {
                .securityScope = m_scope,
                .showSaveAccessPanel =
                    [this](const SaveAccessPanel& panel, FolderAccessGrants::PanelAnswer answer) {
                        m_panels.append(panel.folder);
                        m_panelAnswer = std::move(answer);
                    },
            },
            .activeProcessorCount = 2,
            .debounce = std::chrono::milliseconds(0),
        };
    }

    /// Makes the model and watches it.
    ProcessingModel& makeModel(ProcessingModel::Dependencies dependencies)
    {
        m_model = std::make_unique<ProcessingModel>(std::move(dependencies));
        QObject::connect(
            m_model.get(), &ProcessingModel::statusTextChanged, m_model.get(),
            [this] {
                checkThread();
                m_statuses.append(m_model->statusText());
            },
            Qt::DirectConnection);
        QObject::connect(
            m_model.get(), &ProcessingModel::resultInserted, m_model.get(),
            [this](const ProcessingResult& result) {
                checkThread();
                EXPECT_EQ(m_model->results().constFirst(), result);
            },
            Qt::DirectConnection);
        QObject::connect(
            m_model.get(), &ProcessingModel::isProcessingChanged, m_model.get(),
            [this] { checkThread(); }, Qt::DirectConnection);
        QObject::connect(
            m_model.get(), &ProcessingModel::progressChanged, m_model.get(),
            [this] {
                checkThread();
                m_progress.emplace_back(m_model->finishedCount(), m_model->totalCount());
            },
            Qt::DirectConnection);
        return *m_model;
    }
    ProcessingModel& makeModel() { return makeModel(dependencies()); }

    /// A model whose wait ends only when the test says so, and its timer.
    QTimer& makeWaitingModel()
    {
        auto dependencies = this->dependencies();
        dependencies.debounce = std::chrono::hours(1);
        return timerOf(makeModel(std::move(dependencies)));
    }

    static QTimer& timerOf(const ProcessingModel& model)
    {
        const auto timers = model.findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
        EXPECT_EQ(timers.size(), 1);
        return *timers.constFirst();
    }

    static void endWait(QTimer& timer)
    {
        timer.stop();
        QMetaObject::invokeMethod(&timer, "timeout", Qt::DirectConnection);
    }

    /// Arms the callback that counts completions.
    void countCompletion()
    {
        m_model->setOnComplete([this] {
            checkThread();
            ++m_completions;
        });
    }

    [[nodiscard]] bool runUntilIdle()
    {
        return runUntil([this] { return !m_model->isProcessing(); });
    }
    [[nodiscard]] bool runUntilStatus(const char* text)
    {
        return runUntil([&] { return m_model->statusText() == QString::fromUtf8(text); });
    }
    [[nodiscard]] bool runUntilResults(qsizetype count)
    {
        return runUntil([&] { return m_model->results().size() >= count; });
    }

    [[nodiscard]] QStringList resultNames() const
    {
        QStringList names;
        for (const ProcessingResult& result : m_model->results()) {
            names.append(nameOf(result));
        }
        return names;
    }

    static QString nameOf(const ProcessingResult& result)
    {
        return platform::lastPathComponent(result.sourceURL);
    }

    void checkThread()
    {
        m_everythingOnMainThread
            &= QThread::currentThread() == QCoreApplication::instance()->thread();
    }

    OptimizerSettings m_settings;
    int m_snapshots = 0;
    QStringList m_recorded;
    QStringList m_statuses;
    std::vector<std::pair<qsizetype, qsizetype>> m_progress;
    int m_completions = 0;
    QList<QUrl> m_panels;
    FolderAccessGrants::PanelAnswer m_panelAnswer;
    bool m_everythingOnMainThread = true;
    std::shared_ptr<RecordingScope> m_scope = std::make_shared<RecordingScope>();
    FakeOptimizer m_optimizer;
    std::unique_ptr<ProcessingModel> m_model;
};

} // namespace vellumine::test
