#pragma once

#include "core/ProcessingResult.h"

#include <QByteArray>

namespace vellumine::cli {

/// The result as one JSON object on one line, without a line feed: every field under its name,
/// URLs as encoded text, sizes as objects of width and height, absent fields null.
[[nodiscard]] QByteArray resultJson(const ProcessingResult& result);

} // namespace vellumine::cli
