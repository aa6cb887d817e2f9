#pragma once

#include "stats/StatsStore.h"
#include "ui/results/StatsPresenter.h"

#include <QObject>
#include <QTemporaryDir>
#include <qqmlregistration.h>

namespace vellumine {

/// Lifetime totals that a test sets.
class StatsFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::StatsPresenter* presenter READ presenter CONSTANT)

public:
    using QObject::QObject;

    [[nodiscard]] StatsPresenter* presenter() { return &m_presenter; }

    Q_INVOKABLE void set(double processed, double succeeded, double originalBytes,
        double outputBytes, double netBytesSaved, double largestSingleSaveBytes)
    {
        m_store.setStats({
            .filesProcessed = static_cast<qint64>(processed),
            .filesSucceeded = static_cast<qint64>(succeeded),
            .originalBytes = static_cast<qint64>(originalBytes),
            .outputBytes = static_cast<qint64>(outputBytes),
            .grossBytesSaved = static_cast<qint64>(netBytesSaved > 0 ? netBytesSaved : 0),
            .netBytesSaved = static_cast<qint64>(netBytesSaved),
            .largestSingleSaveBytes = static_cast<qint64>(largestSingleSaveBytes),
        });
    }

private:
    QTemporaryDir m_folder;
    StatsStore m_store { m_folder.path() };
    StatsPresenter m_presenter { m_store };
};

} // namespace vellumine
