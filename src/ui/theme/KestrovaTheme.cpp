#include "ui/theme/KestrovaTheme.h"

namespace vellumine {

KestrovaTheme::KestrovaTheme(QObject* parent)
    : QObject(parent)
{
}

QColor KestrovaTheme::faded(QColor colour, double opacity)
{
    colour.setAlphaF(static_cast<float>(opacity));
    return colour;
}

QColor KestrovaTheme::mixed(const QColor& first, const QColor& second, double share)
{
    const auto weight = static_cast<float>(share);
    const auto between = [weight](float from, float to) { return from + (to - from) * weight; };
    return QColor::fromRgbF(between(first.redF(), second.redF()),
        between(first.greenF(), second.greenF()), between(first.blueF(), second.blueF()),
        between(first.alphaF(), second.alphaF()));
}

} // namespace vellumine
