#include "ui/comparison/ComparisonPresenter.h"

#include "ui/results/ResultTexts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vellumine {

ComparisonPresenter::ComparisonPresenter(ComparisonSample sample, QString title, QObject* parent)
    : QObject(parent)
    , m_sample(std::move(sample))
    , m_title(std::move(title))
{
}

QString ComparisonPresenter::sourceText() const
{
    return tr("Before: ") + m_sample.sourceName;
}

QString ComparisonPresenter::outputText() const
{
    return tr("After: ") + m_sample.outputName;
}

QString ComparisonPresenter::sourceSizeText() const
{
    return results::pixelSize(m_sample.sourcePixelSize);
}

QString ComparisonPresenter::outputSizeText() const
{
    return results::pixelSize(m_sample.outputPixelSize);
}

QSize ComparisonPresenter::contentSize() const
{
    const QSize sample = m_sample.displaySize.toSize();
    return { std::max(sample.width() + 80, 760), sample.height() + 170 };
}

QString ComparisonPresenter::splitText() const
{
    return tr("%1% before").arg(std::lround(m_split * 100));
}

void ComparisonPresenter::pointAt(double x, double canvasWidth)
{
    setSplit(x / std::max(canvasWidth, 1.0));
}

void ComparisonPresenter::moveSplit(int steps)
{
    // from one hundredth to another, wherever the pointer had left it
    setSplit(std::round(m_split * 100 + steps) / 100);
}

void ComparisonPresenter::setSplit(double split)
{
    const double within = std::clamp(split, 0.0, 1.0);
    if (within != m_split) {
        m_split = within;
        Q_EMIT splitChanged();
    }
}

} // namespace vellumine
