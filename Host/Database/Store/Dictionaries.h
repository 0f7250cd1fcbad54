// The dictionaries of a drawing, parsed when first asked for; their records are kept in step with every change.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Database/Store/Names.h"

namespace host::database {

struct DictionaryContents {
  struct Entry {
    std::wstring key;
    Slot* object = nullptr;
  };
  std::vector<Entry> entries;  // file order; removed ones have no object
  NameMap<std::size_t> byKey;  // index
  std::unordered_map<const Slot*, std::size_t> byObject;
  std::uint64_t nextAnonymous = 1;

  void add(std::wstring key, Slot* object);
  /// The object of the key, erased or not; null when there is none.
  Slot* find(std::wstring_view key) const;
};

class Dictionaries {
 public:
  explicit Dictionaries(DrawingDatabase& db) : db_(db) {}
  Dictionaries(const Dictionaries&) = delete;
  Dictionaries& operator=(const Dictionaries&) = delete;

  /// What the dictionary holds; anything else holds nothing.
  DictionaryContents& contents(const Slot& dictionary);
  /// Adds an entry to a dictionary and its record.
  void add(Slot& dictionary, const std::wstring& key, Slot& object);
  void remove(Slot& dictionary, std::size_t index);
  /// To be called when the record was changed by others: it is parsed anew. Cannot fail.
  void forget(const Slot& dictionary) { contents_.erase(&dictionary); }

  /// The dictionary of all dictionaries; null when the drawing has none.
  Slot* root() const { return root_; }
  void setRoot(Slot* root) { root_ = root; }
  /// The same, made when it is missing.
  Slot* obtainRoot();
  /// A dictionary in another one, made when it is missing; null when the key belongs to something else.
  Slot* obtain(Slot& parent, std::wstring_view key);

 private:
  DrawingDatabase& db_;
  Slot* root_ = nullptr;
  std::unordered_map<const Slot*, std::unique_ptr<DictionaryContents>> contents_;
};

bool isDictionary(const Slot& slot);

}  // namespace host::database
