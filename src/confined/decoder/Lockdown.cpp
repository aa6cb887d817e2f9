#include "confined/decoder/Lockdown.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace vellumine::confined {

namespace {

/// Enough for the standard three, the connection, the installed profiles, the file, and the
/// pictures on their way.
constexpr rlim_t mostDescriptors = 24;

void limit(decltype(RLIMIT_CORE) resource, rlim_t value)
{
    const rlimit both { value, value };
    ::setrlimit(resource, &both);
}

} // namespace

Confinement lockDown()
{
    limit(RLIMIT_CORE, 0);
    Confinement inForce;
    inForce.noNewPrivileges = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
#ifndef VELLUMINE_SANITIZED
    // A sanitizer opens files, starts a program to name the lines of its report, and maps its
    // memory as no filter would let it: in such builds the helper is only a process of its own.
    limit(RLIMIT_NOFILE, mostDescriptors);
    inForce.landlockVersion = raiseLandlock();
    inForce.systemCallFilter = installSystemCallFilter();
#else
    (void)mostDescriptors;
#endif
    return inForce;
}

} // namespace vellumine::confined
