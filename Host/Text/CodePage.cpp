#include "CodePage.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>

#include "Characters.h"

// The tables that tools/make-code-pages.py has made, whose first lines describe them, behind their length.
extern "C" const unsigned char tolmexCodePages[];

namespace host::text {
namespace {

constexpr std::size_t kNameSize = 16;
constexpr std::uint16_t kSequence = 0x8000;

/// Reads the tables; they are part of the program, so nothing in them is doubted.
class TableReader {
 public:
  TableReader() : at_(tolmexCodePages + sizeof(std::uint64_t)) {
    std::uint64_t size = 0;
    std::memcpy(&size, tolmexCodePages, sizeof size);
    end_ = at_ + size;
  }
  bool hasMore() const { return at_ < end_; }
  std::string name() {
    const auto* const begin = at_;
    at_ += kNameSize;
    return {begin, std::find(begin, at_, '\0')};
  }
  std::uint16_t number() {
    const auto low = at_[0], high = at_[1];
    at_ += 2;
    return static_cast<std::uint16_t>(low | high << 8);
  }
  /// Calls `take(code, character)` for all of a segment; false for the one that parts codes from customary ones.
  template <class Take>
  bool segment(Take take) {
    const std::uint16_t first = number(), count = number();
    std::uint16_t character = 0;
    for (unsigned i = 0; i < (count & ~unsigned{kSequence}); ++i) {
      character = (count & kSequence) != 0 && i > 0 ? static_cast<std::uint16_t>(character + 1) : number();
      take(static_cast<std::uint16_t>(first + i), static_cast<char16_t>(character));
    }
    return count != 0;
  }

 private:
  const unsigned char* at_;
  const unsigned char* end_;
};

}  // namespace

std::shared_ptr<const CodePage> CodePage::get(const std::string& name) {
  static std::mutex mutex;
  static std::map<std::string, std::shared_ptr<const CodePage>> pages;
  const std::lock_guard lock(mutex);
  std::shared_ptr<const CodePage>& page = pages[name];
  if (!page) page = std::make_shared<const CodePage>(name);
  return page;
}

CodePage::CodePage(const std::string& name) : codes_(0x10000) {
  bool isKnown = false;
  for (TableReader table; table.hasMore() && !isKnown;) {
    isKnown = table.name() == name;
    bool isCustomary = false;
    for (unsigned left = table.number(); left > 0; --left) {
      const bool isSegment = table.segment([&](std::uint16_t code, char16_t character) {
        if (!isKnown) return;
        if (isCustomary) {
          codes_[character] = code;
        } else {
          add(code, character);
        }
      });
      isCustomary = isCustomary || !isSegment;
    }
  }
  for (unsigned byte = 1; byte < 0x100 && !isKnown; ++byte)
    add(static_cast<std::uint16_t>(byte), static_cast<char16_t>(byte));
}

void CodePage::add(std::uint16_t code, char16_t character) {
  if (code < 0x100) {
    singles_[code] = character;
  } else {
    if (pairs_.empty()) pairs_.resize(0x8000);
    pairs_[code - 0x8000U] = character;
  }
  if (codes_[character] == 0) codes_[character] = code;
}

char32_t CodePage::next(std::string_view bytes, std::size_t& position) const {
  const auto lead = static_cast<unsigned char>(bytes[position++]);
  if (!isLead(lead)) return singles_[lead];
  if (pairs_.empty() || position == bytes.size()) return kReplacement;
  const auto trail = static_cast<unsigned char>(bytes[position]);
  const char16_t character = pairs_[static_cast<std::size_t>(lead - 0x80) * 0x100 + trail];
  if (character != 0 || trail >= 0x80) ++position;
  return character != 0 ? character : kReplacement;
}

bool CodePage::append(std::string& out, char32_t codePoint) const {
  const std::uint16_t code = codePoint < codes_.size() ? codes_[codePoint] : 0;
  if (code == 0) return false;
  if (code > 0xFF) out += static_cast<char>(code >> 8);
  out += static_cast<char>(code & 0xFF);
  return true;
}

}  // namespace host::text
