// How the allocator works for programs that hold whole drawings: big pages spare the system a million small ones.

// The name by which jemalloc asks the program; without jemalloc nobody does.
extern "C" {
const char* malloc_conf = "thp:always";  // NOLINT(readability-identifier-naming)
}
