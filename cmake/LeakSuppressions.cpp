// Leaks that are not ours, for builds with the address sanitizer: the font library keeps its caches to the end.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }
extern "C" const char* __lsan_default_options();  // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }
