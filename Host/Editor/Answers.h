// What typed answers mean: points, numbers, keywords, handles, near names. Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "gepnt3d.h"

namespace host::editor {

/// "10,5", "10,5,2", "@5,0" from `origin`, "@10<90" (degrees, counter-clockwise from +X), "10<90" from 0,0, "@" alone
/// for `origin` itself. A leading "*" or "#" (absolute) is accepted. Nothing when it is no such thing or not finite.
std::optional<AcGePoint3d> parsePoint(std::wstring_view text, const AcGePoint3d& origin);

/// The whole text as a finite number; fractions ("1/2", "1-1/2") too.
std::optional<double> parseNumber(std::wstring_view text);
/// The whole text as a decimal integer.
std::optional<std::int64_t> parseWhole(std::wstring_view text);

/// Keywords as acedInitGet spells them: capitals are the abbreviation, "Local1 Local2 _Global1 Global2" pairs lists.
class Keywords {
 public:
  Keywords() = default;
  explicit Keywords(std::wstring_view list);
  bool isEmpty() const { return entries_.empty(); }
  /// The global spelling of the keyword that the answer names; a leading "_" is accepted.
  std::optional<std::wstring> match(std::wstring_view answer) const;
  /// The spellings shown to users: "Close/Undo".
  std::wstring shown() const;

 private:
  struct Entry {
    std::wstring shown;   // as listed
    std::wstring global;  // what is handed out
    std::wstring shownFolded, shownShort, globalFolded, globalShort;
  };
  std::vector<Entry> entries_;
};

/// The handle in `(handent "2F")`; nothing when the text is something else.
std::optional<std::uint64_t> parseHandent(std::wstring_view text);

/// At most three of the names that are nearest by edit distance, nearest first; none that is far off.
std::vector<std::wstring> nearestNames(std::wstring_view name, const std::vector<std::wstring>& known);

/// A number as the command line shows it: up to six decimals, no trailing zeros.
std::wstring shownNumber(double value);
std::wstring shownPoint(const AcGePoint3d& point);

}  // namespace host::editor
