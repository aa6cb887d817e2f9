#pragma once

// What many files include, read once for a whole library of them. No file may rely on it: the checks
// of the code compile each one without.

#include <tl/expected.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>
