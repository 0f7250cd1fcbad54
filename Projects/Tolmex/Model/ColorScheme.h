// The colours of one drawing's element categories and their form in the file tolm.ini.
#pragma once

#include <string>
#include <vector>

namespace OrvLib {

/// Host colour indices, 1 to 255; a file may hold any number, which layers then refuse.
struct ColorScheme {
  int asphalt = 254;
  int gravel = 31;
  int yardPaving = 252;
  int path = 31;
  int boardFence = 7;
  int stoneFence = 7;
  int hedge = 92;
  int forest = 105;
  int grass = 70;
  int roofFillShadow = 45;
  int roofFillSun = 42;
  int roof = 250;

  bool operator==(const ColorScheme&) const = default;
};

/// Takes the colours from lines of the form "key value", case of the key ignored, the first line of a key winning. A
/// value without a leading number is 0. Keys that are missing or have no value leave their colour as it is.
void readSchemeLines(const std::vector<std::wstring>& lines, ColorScheme& scheme);

/// The file's text: for every colour its key, a tab, the index and a line feed.
std::wstring schemeText(const ColorScheme& scheme);

}  // namespace OrvLib
