#pragma once

#include "core/OptimizerSettings.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace vellumine::cli {

/// The names of the sixteen preferences, in their order.
[[nodiscard]] QStringList settingKeys();

/// What values a key takes, for the help text.
[[nodiscard]] QString valuesOf(const QString& key);

/// Sets one preference by its name, to a value in bytes as they were given: the name of a folder
/// need not be valid UTF-8. Answers what is wrong, nothing when all is well.
[[nodiscard]] std::optional<QString> applySetting(
    OptimizerSettings& settings, const QString& key, const QByteArray& value);

} // namespace vellumine::cli
