#pragma once

#include <QString>

namespace vellumine {

/// Where this program keeps what outlives it: the folder "Vellumine" in the user's folder for
/// application data, `$XDG_DATA_HOME` or `~/.local/share`, which is made if it is missing. Where it
/// cannot be made, `~/Library/Application Support` takes its place.
[[nodiscard]] QString statsFolder();

/// The same for another environment. A data folder that is empty or relative counts as not set.
[[nodiscard]] QString statsFolder(const QString& dataHome, const QString& home);

} // namespace vellumine
