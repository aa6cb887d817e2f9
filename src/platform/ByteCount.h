#pragma once

#include <QLocale>
#include <QString>

namespace vellumine::platform {

/// A number of bytes as file managers show it: "Zero KB", "1 byte", "999 bytes", whole KB, MB with
/// at most one decimal, GB and larger with at most two. Powers of 1000, rounded half to even,
/// without trailing zeros. A count that would round up to 1000 of a unit is 1 of the next. A
/// negative count is "-" and the text of its magnitude. The locale gives digits and
/// decimal sign.
[[nodiscard]] QString byteCountText(qint64 bytes, const QLocale& locale = QLocale());

} // namespace vellumine::platform
