// Marks a function that the host finds by name in the module.
#pragma once

#ifdef _WIN32
#define ORV_EXPORT extern "C" __declspec(dllexport)
#else
#define ORV_EXPORT extern "C" __attribute__((visibility("default")))
#endif
