#pragma once

#include "imaging/Error.h"
#include "imaging/codecs/JumpGuard.h"

#include <array>
#include <cstdio>
#include <optional>

#include <jpeglib.h>

namespace vellumine::imaging::jpeg {

/// The error manager of one compress or decompress object: remembers what went wrong and leaves
/// the library. Nothing is ever printed.
///
/// Of the library's warnings, those that mean lost picture data are failures here: data that is
/// missing, that no code is for, or that is left over. Stray bytes between markers, odd version
/// numbers and the like are not.
class Errors : public jpeg_error_mgr {
public:
    Errors();

    /// Runs calls that own nothing (see JumpGuard) and reports how they ended.
    template <typename Calls> [[nodiscard]] Result<void> run(const Calls& calls)
    {
        if (m_guard.run(calls)) {
            return {};
        }
        return failure(m_kind, m_detail.data());
    }

    /// Leaves the calls under way with a failure that the library does not know. The text must be
    /// a literal.
    [[noreturn]] void fail(Error::Kind kind, const char* detail);

    /// What a failure that the library itself finds is, if not what its code says: a file that
    /// ended early is truncated, whatever the library makes of the rest.
    void setOverridingKind(Error::Kind kind) { m_overridingKind = kind; }

private:
    [[noreturn]] static void exitWithError(j_common_ptr library);
    static void judgeMessage(j_common_ptr library, int level);

    JumpGuard m_guard;
    Error::Kind m_kind = Error::Kind::malformed;
    std::optional<Error::Kind> m_overridingKind;
    std::array<char, JMSG_LENGTH_MAX> m_detail {};
};

/// The manager that an object of the library was set up with.
[[nodiscard]] inline Errors& errorsOf(j_common_ptr library)
{
    return *static_cast<Errors*>(library->err);
}

} // namespace vellumine::imaging::jpeg
