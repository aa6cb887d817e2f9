#include "ui/results/ResultsSummaryPresenter.h"

#include "core/ProcessingResult.h"
#include "platform/ByteCount.h"
#include "ui/results/ResultTexts.h"

#include <QLatin1Char>

namespace vellumine {
namespace {

void addTo(qint64& sum, qint64 amount)
{
    if (__builtin_add_overflow(sum, amount, &sum)) {
        qFatal("a sum of sizes does not fit 64 bits");
    }
}

} // namespace

void ResultsSummaryPresenter::add(const ProcessingResult& result)
{
    ++m_count;
    if (result.isSuccess) {
        ++m_successfulCount;
        addTo(m_totalOriginalBytes, result.originalBytes);
        addTo(m_totalOutputBytes, result.outputBytes);
    }
    Q_EMIT changed();
}

qint64 ResultsSummaryPresenter::totalChange() const
{
    return hasGrown() ? results::difference(m_totalOutputBytes, m_totalOriginalBytes)
                      : results::difference(m_totalOriginalBytes, m_totalOutputBytes);
}

QString ResultsSummaryPresenter::filesText() const
{
    return QString::number(m_successfulCount) + QLatin1Char('/') + QString::number(m_count);
}

QString ResultsSummaryPresenter::totalTitle() const
{
    return hasGrown() ? tr("Total Larger") : tr("Total Saved");
}

QString ResultsSummaryPresenter::totalText() const
{
    return platform::byteCountText(totalChange());
}

QString ResultsSummaryPresenter::reductionText() const
{
    if (m_totalOriginalBytes < 1) {
        return QStringLiteral("0%");
    }
    const QString percentage
        = results::percentage(totalChange(), m_totalOriginalBytes) + QLatin1Char('%');
    return hasGrown() ? QLatin1Char('+') + percentage : percentage;
}

QString ResultsSummaryPresenter::spokenText() const
{
    return tr("Files: %1, %2: %3, Reduction: %4")
        .arg(filesText(), totalTitle(), totalText(), reductionText());
}

} // namespace vellumine
