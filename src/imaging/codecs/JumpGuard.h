#pragma once

#include <csetjmp>

namespace vellumine::imaging {

/// Runs calls into a C library whose error handler leaves by long jump.
///
/// A long jump must not pass a frame with something to destroy. So `calls` and whatever the library
/// calls back own nothing: they work on objects that live outside run().
class JumpGuard {
public:
    /// Whether `calls` came to its end; false when leave() was called on the way.
    template <typename Calls> [[nodiscard, gnu::noinline]] bool run(const Calls& calls)
    {
        if (setjmp(m_target) != 0) { // NOLINT(cert-err52-cpp): the libraries are made for it
            return false;
        }
        calls();
        return true;
    }

    /// Goes back to the run() that is under way.
    [[noreturn]] void leave() { std::longjmp(m_target, 1); }

private:
    std::jmp_buf m_target {};
};

} // namespace vellumine::imaging
