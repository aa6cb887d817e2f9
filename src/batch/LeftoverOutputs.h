#pragma once

#include "core/OptimizerSettings.h"

#include <QList>
#include <QUrl>

namespace vellumine {

/// Removes the half-written outputs of a program that crashed or was killed from every folder that
/// the sources' outputs go to.
void removeLeftoverOutputs(const QList<QUrl>& sources, const OptimizerSettings& settings);

} // namespace vellumine
