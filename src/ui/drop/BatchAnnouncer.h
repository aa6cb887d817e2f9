#pragma once

#include "ui/drop/ProcessingPresenter.h"
#include "ui/results/ResultsSummaryPresenter.h"

#include <QPointer>

namespace vellumine {

/// What a screen reader says of the batches without being asked: what begins, and how it ended with
/// the totals. Not every file: of a thousand nobody wants to hear each.
class BatchAnnouncer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::ProcessingPresenter* processing READ processing WRITE setProcessing NOTIFY
            processingChanged REQUIRED)
    Q_PROPERTY(
        vellumine::ResultsSummaryPresenter* summary MEMBER m_summary NOTIFY summaryChanged REQUIRED)

public:
    using QObject::QObject;

    [[nodiscard]] ProcessingPresenter* processing() const { return m_processing; }
    void setProcessing(ProcessingPresenter* processing);

Q_SIGNALS:
    void processingChanged();
    void summaryChanged();
    void announced(const QString& text);

private:
    void follow();

    QPointer<ProcessingPresenter> m_processing;
    vellumine::ResultsSummaryPresenter* m_summary = nullptr;
    bool m_hasConverted = false; ///< the batch that runs, or the one that just ended
};

} // namespace vellumine
