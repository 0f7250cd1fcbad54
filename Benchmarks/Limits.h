// What no program that does the same work can be faster than, on this machine and this file.
#pragma once

#include <filesystem>
#include <string>

#include "Measurement.h"
#include "Picture/Composition.h"

namespace benchmarks {

/// The whole file; throws when it cannot be read.
std::string readBytes(const std::filesystem::path& file);

/// Reads the file, finds every line in it and turns every line that is a number into one.
void scanFile(Clock& clock, const std::filesystem::path& file);
/// Writes the bytes of the file, held in memory, to another file and flushes it to the disk.
void copyFile(Clock& clock, const std::filesystem::path& file, const std::filesystem::path& target);

/// Draws outlines that are ready, with the plain rasteriser, into an image of the picture's size and encodes it as PNG.
void rasterize(Clock& clock, const host::picture::Composition& picture);

}  // namespace benchmarks
