// Predefined hatch patterns and pattern files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hatching/PatternFill.h"
#include "Problems/Problem.h"

namespace host::hatching {

struct Pattern {
  std::string name;  // capitals, UTF-8
  std::string description;
  std::vector<PatternLine> families;  // unscaled; offsets along and across the line as the file gives them
};

/// Patterns of a pattern file's text; `problems` gets one for each line that cannot be read. Such a
/// line is left out; a pattern that has no line left is left out whole. SOLID has no families.
std::vector<Pattern> parsePatternFile(std::string_view text, std::vector<Problem>& problems);
/// A predefined pattern by name (without regard to case): from acad.pat, or acadiso.pat in a metric drawing, on the
/// support path. SOLID is known without a file. Nothing when unknown.
std::optional<Pattern> findPattern(std::wstring_view name, bool metric);
/// A custom pattern: the one of that name in a file of that name ("gravel.pat") on the support path.
std::optional<Pattern> findCustomPattern(std::wstring_view name);
/// While one lives, each pattern is searched for once: a command that makes many hatches does not look through the
/// support path for every one. May be nested.
class PatternMemory {
 public:
  PatternMemory();
  PatternMemory(const PatternMemory&) = delete;
  PatternMemory& operator=(const PatternMemory&) = delete;
  ~PatternMemory();
};
/// Number of the outermost PatternMemory that lives: as long as it is the same, a name finds the same pattern. 0 for
/// none.
std::uint64_t patternMemoryNumber();

/// The pattern's lines as a hatch stores them: angle f + a, base rotated by a and scaled, offset rotated by f + a and
/// scaled, dashes scaled. Families that scaling takes beyond what numbers hold are left out.
std::vector<PatternLine> scaledPattern(const Pattern& pattern, double angleRad, double scale);

}  // namespace host::hatching
