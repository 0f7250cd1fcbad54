// Pictures beside one another on a sheet, with what each of them shows.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tolmex {

struct ContactSheet {
  struct Cell {
    std::filesystem::path picture;  // PNG; empty: only its lines
    std::string title;
    std::vector<std::string> lines;
  };
  std::string title;
  std::vector<Cell> cells;
  std::vector<std::string> notes;  // below all
};

/// The sheet as SVG with its pictures inside, at most three to a row. A picture that cannot be read leaves its place
/// empty.
std::string contactSheet(const ContactSheet& sheet);

}  // namespace tolmex
