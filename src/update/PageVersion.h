#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace vellumine {

/// The version that the product's home page names, exactly as it stands there: the value of
/// "softwareVersion" in the page's structured data, else the visible text between "Version" and a
/// middle dot; of each the first one. None where the page names none or is not valid UTF-8.
[[nodiscard]] std::optional<QString> versionOnPage(const QByteArray& page);

} // namespace vellumine
