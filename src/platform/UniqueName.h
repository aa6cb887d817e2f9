#pragma once

#include <string>
#include <string_view>

namespace vellumine::platform {

/// A file name that nothing else has: the prefix, a random UUID (RFC 4122, version 4) in capitals
/// and the suffix.
[[nodiscard]] std::string uniqueName(std::string_view prefix, std::string_view suffix);

/// Whether uniqueName() gives such names. A user's own file whose name only looks alike is none.
[[nodiscard]] bool isUniqueName(
    std::string_view name, std::string_view prefix, std::string_view suffix);

} // namespace vellumine::platform
