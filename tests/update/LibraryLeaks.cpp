// What LeakSanitizer is told of in this program: libproxy 0.5 loses a few bytes each time that it
// is asked for the way to an address, inside its own library. Without frame pointers there, only
// the slow way of walking up the stack comes as far as its name.

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the sanitizers' names
extern "C" {

[[gnu::visibility("default")]] const char* __lsan_default_suppressions();
[[gnu::visibility("default")]] const char* __asan_default_options();

const char* __lsan_default_suppressions()
{
    return "leak:libpxbackend";
}

const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
