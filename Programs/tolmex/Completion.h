// Completing names that are typed.
#pragma once

#include <string>
#include <vector>

namespace tolmex {

struct Completion {
  std::string line;                  // what stands there then; empty when no name is meant
  std::vector<std::string> choices;  // to be shown: the line is as long as all of them allow
};

/// Completes the one word of a line among names in capitals, from their beginning or, where none begins so, from any
/// part. Characters that may stand before a command's name stay.
Completion completed(const std::string& typed, const std::vector<std::string>& names);

void printColumns(const std::vector<std::string>& names);

}  // namespace tolmex
