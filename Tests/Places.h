#pragma once

// Where this checkout and its build lie. Only Places.cpp is compiled with the paths, so that every other object of the
// tests is the same in every checkout and comes from the compiler cache.

/// The root of the checkout.
extern const char* const kSourceDir;
/// The build's folder of programs, libraries and modules.
extern const char* const kBinDir;
