#pragma once

#include <plist/plist.h>

#include <memory>

namespace vellumine {

struct FreePlistNode {
    void operator()(void* node) const { plist_free(node); }
};

struct FreePlistBytes {
    /// By the name that the installed version has for it; the first is the newer one.
    template <typename Byte> void operator()(Byte* bytes) const
    {
        if constexpr (requires { plist_mem_free(bytes); }) {
            plist_mem_free(bytes);
        } else {
            plist_to_bin_free(bytes);
        }
    }
};

/// A `plist_t` that is freed, with all that it holds.
using PlistNode = std::unique_ptr<void, FreePlistNode>;
/// What `plist_to_bin()` gave.
using PlistBytes = std::unique_ptr<char, FreePlistBytes>;

} // namespace vellumine
