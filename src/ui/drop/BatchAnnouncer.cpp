#include "ui/drop/BatchAnnouncer.h"

#include <utility>

namespace vellumine {

void BatchAnnouncer::setProcessing(ProcessingPresenter* processing)
{
    if (m_processing != nullptr) {
        m_processing->disconnect(this);
    }
    m_processing = processing;
    if (m_processing != nullptr) {
        connect(
            m_processing, &ProcessingPresenter::statusTextChanged, this, &BatchAnnouncer::follow);
    }
    Q_EMIT processingChanged();
}

void BatchAnnouncer::follow()
{
    if (m_processing->isProcessing() && m_processing->progress() > 0) {
        m_hasConverted = true;
        return;
    }
    const QString status = m_processing->statusText();
    const bool hasTotals = !m_processing->isProcessing() && std::exchange(m_hasConverted, false)
        && m_summary != nullptr;
    Q_EMIT announced(hasTotals ? tr("%1. %2").arg(status, m_summary->spokenText()) : status);
}

} // namespace vellumine
