// How the address sanitizer works for fuzz targets.
extern "C" const char* __asan_default_options();   // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __asan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  // No count in a file may make the host ask for that much at once. The rest is speed: most of what an input costs are
  // the many small objects of a drawing, and what the sanitizer remembers of each; where memory was given out is
  // told after ASAN_OPTIONS=malloc_context_size=30.
  return "max_allocation_size_mb=1024:detect_stack_use_after_return=0:malloc_context_size=1:max_malloc_fill_size=256:"
         "quarantine_size_mb=2:thread_local_quarantine_size_kb=16";
}
