#include "ui/results/StatsPresenter.h"

#include "platform/ByteCount.h"

#include <QLatin1Char>

namespace vellumine {

using platform::byteCountText;

StatsPresenter::StatsPresenter(StatsStore& store, QObject* parent)
    : QObject(parent)
    , m_store(store)
{
    connect(&store, &StatsStore::statsChanged, this, &StatsPresenter::changed);
}

QString StatsPresenter::filesText() const
{
    return tr("%1 lifetime files").arg(QString::number(m_store.stats().filesSucceeded));
}

QString StatsPresenter::netSavedText() const
{
    return tr("Net saved %1").arg(byteCountText(m_store.stats().netBytesSaved));
}

QString StatsPresenter::bestText() const
{
    const qint64 best = m_store.stats().largestSingleSaveBytes;
    return best >= 1 ? tr("Best %1").arg(byteCountText(best)) : QString();
}

QList<LifetimeMetric> StatsPresenter::metrics() const
{
    const LifetimeStats& stats = m_store.stats();
    return {
        { tr("Files"),
            QString::number(stats.filesSucceeded) + QLatin1Char('/')
                + QString::number(stats.filesProcessed) },
        { tr("Gross Saved"), byteCountText(stats.grossBytesSaved) },
        { tr("Net Saved"), byteCountText(stats.netBytesSaved) },
        { tr("Original Data"), byteCountText(stats.originalBytes) },
        { tr("Output Data"), byteCountText(stats.outputBytes) },
        { tr("Largest Save"), byteCountText(stats.largestSingleSaveBytes) },
    };
}

bool StatsPresenter::canReset() const
{
    return m_store.stats().filesProcessed != 0;
}

void StatsPresenter::reset()
{
    m_store.reset();
}

} // namespace vellumine
