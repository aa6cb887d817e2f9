// AddressSanitizer's quick way of walking up the stack ends in libraries without frame pointers.
// Only the slow one comes as far as the name of the library that keeps what it was asked for, by
// which LeakSanitizer is told to leave it out.

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the sanitizer's name
extern "C" {

[[gnu::visibility("default")]] const char* __asan_default_options();

const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
