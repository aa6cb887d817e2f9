#pragma once

#include <cstdint>

namespace vellumine::test {

/// What this process has of the memory, in bytes.
struct ProcessMemory {
    std::int64_t resident = 0;
    std::int64_t live = 0; ///< what is in use of the heap

    static ProcessMemory now();
};

} // namespace vellumine::test
