// How many features met with what.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace host::import {

/// In the order of the first meeting.
class Tally {
 public:
  void add(const std::string& what, std::size_t count = 1) {
    const auto same = std::find_if(all_.begin(), all_.end(), [&what](const auto& each) { return each.first == what; });
    if (same != all_.end()) {
      same->second += count;
    } else if (count > 0) {
      all_.emplace_back(what, count);
    }
  }
  const std::vector<std::pair<std::string, std::size_t>>& all() const { return all_; }

 private:
  std::vector<std::pair<std::string, std::size_t>> all_;
};

}  // namespace host::import
