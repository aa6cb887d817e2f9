#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace vellumine {

/// The running version as text: "1.4.2 build 37".
[[nodiscard]] QString currentVersionText();

/// A version and its build number as one text; what is missing counts as "0.0" and as "0".
[[nodiscard]] QString versionText(
    const std::optional<QString>& version, const std::optional<QString>& build);

/// The numbers in a text: its maximal runs of ASCII digits, in order. Everything else only
/// separates them. A run beyond 64 bits is skipped.
[[nodiscard]] QList<qint64> versionComponents(QStringView text);

/// Whether the candidate comes after the current version: their components are compared one by
/// one, a missing one counts as 0. The build number in the current text is a component like the
/// others, so 1.4.2 is not newer than "1.4.2 build 37", and 1.4.1 is not newer than "1.4 build 9".
[[nodiscard]] bool isNewer(QStringView candidate, QStringView current);

} // namespace vellumine
