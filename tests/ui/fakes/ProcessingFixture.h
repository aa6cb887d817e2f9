#pragma once

#include "batch/FakeOptimizer.h"
#include "batch/HoldingScope.h"
#include "batch/ProcessingModel.h"
#include "ui/drop/ProcessingPresenter.h"

#include <QObject>
#include <QStringList>
#include <qqmlregistration.h>

#include <chrono>
#include <memory>

namespace vellumine {

/// A model of batches whose files are never read: each conversion ends when the test lets it. No
/// scan is short.
class ProcessingFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::ProcessingPresenter* presenter READ presenter CONSTANT)
    /// Names of the files whose conversion began, in that order.
    Q_PROPERTY(QStringList begun READ begun)

public:
    explicit ProcessingFixture(QObject* parent = nullptr);
    ~ProcessingFixture() override;
    ProcessingFixture(const ProcessingFixture&) = delete;
    ProcessingFixture& operator=(const ProcessingFixture&) = delete;

    [[nodiscard]] ProcessingPresenter* presenter() { return &m_presenter; }
    [[nodiscard]] QStringList begun() const { return m_optimizer.begun(); }

    /// Drops photo-1.jpg, photo-2.jpg and so on.
    Q_INVOKABLE void dropPhotos(int count);
    /// Keeps the next batch looking for images.
    Q_INVOKABLE void holdScan() { m_scope->hold(); }
    Q_INVOKABLE void letScanGo() { m_scope->letGo(); }
    Q_INVOKABLE void letGo(const QString& name) { m_optimizer.letGo(name); }
    Q_INVOKABLE void letAllGo() { m_optimizer.letAllGo(); }
    /// Copies the URIs, or a text, to the clipboard.
    Q_INVOKABLE static void copyUris(const QStringList& uris);
    Q_INVOKABLE static void copyText(const QString& text);

private:
    [[nodiscard]] ProcessingModel::Dependencies dependencies();

    test::FakeOptimizer m_optimizer { test::FakeOptimizer::Mode::hold };
    std::shared_ptr<test::HoldingScope> m_scope = std::make_shared<test::HoldingScope>();
    ProcessingModel m_model { dependencies() };
    ProcessingPresenter m_presenter { m_model, std::chrono::milliseconds(0) };
};

} // namespace vellumine
