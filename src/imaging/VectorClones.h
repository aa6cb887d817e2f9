#pragma once

/// Before a function with a plain loop over samples: compiles it once more for processors with
/// AVX2, and the program's start chooses. Sanitized builds do without: the choice is made before
/// their run-time library is ready.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__)          \
    && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define VELLUMINE_VECTOR_CLONES [[gnu::target_clones("avx2", "default")]]
#define VELLUMINE_HAS_VECTOR_CLONES
#else
#define VELLUMINE_VECTOR_CLONES
#endif
