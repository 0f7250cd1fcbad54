#include "Picture/ImagePlaces.h"

#include <algorithm>

#include "Platform/Paths.h"

namespace host::picture {

std::vector<std::filesystem::path> imagePlaces(std::string name, const std::string& folder) {
  namespace fs = std::filesystem;
  std::ranges::replace(name, '\\', '/');
  const bool hasDrive = name.size() > 2 && name[1] == ':';
  std::vector<fs::path> places;
  const fs::path root = platform::pathOf(folder), file = platform::pathOf(name);
  if (!hasDrive || file.is_absolute()) places.push_back(root / file);
  places.push_back(root / file.filename());
  return places;
}

}  // namespace host::picture
