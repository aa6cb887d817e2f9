#pragma once

#include "core/OptimizerSettings.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace vellumine::cli {

/// The names of the sixteen preferences, in their order.
[[nodiscard]] QStringList settingKeys();

/// What values a key takes, for the help text.
[[nodiscard]] QString valuesOf(const QString& key);

/// Sets one preference by its name. Answers what is wrong, nothing when all is well.
[[nodiscard]] std::optional<QString> applySetting(
    OptimizerSettings& settings, const QString& key, const QString& value);

} // namespace vellumine::cli
