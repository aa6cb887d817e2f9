#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace vellumine {

/// A binary property list whose root is an array of data values, as other programs read it.
/// None where memory or the format's 32-bit lengths do not suffice.
[[nodiscard]] std::optional<QByteArray> encodePropertyList(const QList<QByteArray>& values);

/// The values of such a property list. None for anything else: other bytes, a list that is damaged,
/// another root, an array that holds anything but data values. Takes time and memory in
/// proportion to the bytes, whatever they say.
[[nodiscard]] std::optional<QList<QByteArray>> decodePropertyList(const QByteArray& bytes);

} // namespace vellumine
