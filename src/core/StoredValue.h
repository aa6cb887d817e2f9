#pragma once

#include "core/RawValue.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <optional>

namespace vellumine {

/// What a stored preference holds, where it is of the wanted type; none otherwise. A text file of
/// preferences keeps numbers and truth values as text, which counts as their type when all of it
/// is read as one.
/// @{
[[nodiscard]] std::optional<bool> storedBool(const QVariant& value);
[[nodiscard]] std::optional<qint64> storedInteger(const QVariant& value);
/// Finite numbers only.
[[nodiscard]] std::optional<double> storedNumber(const QVariant& value);
[[nodiscard]] std::optional<QString> storedText(const QVariant& value);
[[nodiscard]] std::optional<QByteArray> storedData(const QVariant& value);
/// @}

/// The choice whose raw value is stored.
template <Enumeration Choice>
[[nodiscard]] std::optional<Choice> storedChoice(const QVariant& value)
{
    const std::optional<QString> text = storedText(value);
    return text ? fromRawValue<Choice>(*text) : std::nullopt;
}

} // namespace vellumine
