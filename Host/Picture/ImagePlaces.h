// Where the files of images are looked for.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host::picture {

/// As the drawing names it, from its folder unless the name begins with a drive; then the bare name in that folder.
std::vector<std::filesystem::path> imagePlaces(std::string name, const std::string& folder);

}  // namespace host::picture
