#include "imaging/MachineMemory.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>

namespace vellumine::imaging {

namespace {

using Bytes = std::optional<std::uint64_t>;

Bytes smaller(Bytes a, Bytes b)
{
    return a && b ? std::min(*a, *b) : a ? a : b;
}

/// The number in a file; nothing for a file that says "max", or is not there.
Bytes numberIn(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::string text;
    std::getline(stream, text);
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? Bytes(number) : std::nullopt;
}

bool hasWord(std::string_view list, std::string_view word)
{
    while (!list.empty()) {
        const auto comma = std::min(list.find(','), list.size());
        if (list.substr(0, comma) == word) {
            return true;
        }
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return false;
}

/// The smallest limit of a group and those around it. Inside a container the group may have another
/// name than outside: then the root is its own.
Bytes limitOf(const std::filesystem::path& root, std::string_view group, const char* file)
{
    Bytes found = numberIn(root / file);
    std::filesystem::path folder = root;
    for (const auto& part : std::filesystem::path(group).relative_path()) {
        if (part == "..") {
            break;
        }
        folder /= part;
        found = smaller(found, numberIn(folder / file));
    }
    return found;
}

Bytes physicalMemory()
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
}

Bytes addressLimit()
{
    rlimit limit {};
    if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return std::nullopt;
    }
    return limit.rlim_cur;
}

} // namespace

Bytes controlGroupMemory(const std::filesystem::path& list, const std::filesystem::path& root)
{
    Bytes found;
    std::ifstream stream(list);
    std::string line;
    while (std::getline(stream, line)) { // number:controllers:path
        const auto first = line.find(':');
        const auto second = line.find(':', first + 1);
        if (first == std::string::npos || second == std::string::npos) {
            continue;
        }
        const std::string_view text = line;
        const std::string_view controllers = text.substr(first + 1, second - first - 1);
        const std::string_view group = text.substr(second + 1);
        if (controllers.empty()) {
            found = smaller(found, limitOf(root, group, "memory.max"));
        } else if (hasWord(controllers, "memory")) {
            found = smaller(found, limitOf(root / "memory", group, "memory.limit_in_bytes"));
        }
    }
    return found;
}

Bytes memoryForThisProcess()
{
    return smaller(smaller(physicalMemory(), addressLimit()),
        controlGroupMemory("/proc/self/cgroup", "/sys/fs/cgroup"));
}

} // namespace vellumine::imaging
