#include "support/ProcessMemory.h"

#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace vellumine::test {

ProcessMemory ProcessMemory::now()
{
    std::int64_t size = 0;
    std::int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return { resident * ::sysconf(_SC_PAGESIZE), static_cast<std::int64_t>(mallinfo2().uordblks) };
}

} // namespace vellumine::test
