#include "Database/Store/TagEdits.h"

namespace host::database {

bool findTagIn(TagCursor cursor, std::string_view subclass, int code, Tag& tag, std::size_t* index) {
  bool inside = subclass.empty();
  bool inGroup = false;
  std::size_t number = 0;
  for (; cursor.next(tag); ++number) {
    if (tag.code >= 1000) return false;
    if (tag.code == 102) {
      const std::string_view value = tag.trimmed();
      inGroup = !value.empty() && value.front() == '{';
      continue;
    }
    if (inGroup) continue;
    if (tag.code == 100 && !subclass.empty()) {
      if (inside) return false;  // a record has each subclass once
      inside = tag.trimmed() == subclass;
      continue;
    }
    if (inside && tag.code == code) {
      if (index != nullptr) *index = number;
      return true;
    }
  }
  return false;
}

namespace {

/// Number of the tag behind the last one of the subclass; the end of the own tags when the subclass is missing.
std::size_t endOfSubclass(const Record& record, std::string_view subclass) {
  bool inside = subclass.empty();
  std::size_t number = 0;
  Tag tag;
  for (TagCursor cursor = record.tags(); cursor.next(tag); ++number) {
    if (tag.code >= 1000) break;
    if (tag.code == 100 && !subclass.empty()) {
      if (inside) return number;
      inside = tag.trimmed() == subclass;
    }
  }
  return number;
}

}  // namespace

void setTagIn(Record& record, std::string_view subclass, int code, std::string_view bytes) {
  Tag tag;
  std::size_t index = 0;
  if (findTagIn(record.tags(), subclass, code, tag, &index)) {
    if (tag.bytes != bytes) record.replace(index, 1, bytes);
  } else {
    record.replace(endOfSubclass(record, subclass), 0, bytes);
  }
}

void removeTagIn(Record& record, std::string_view subclass, int code) {
  Tag tag;
  std::size_t index = 0;
  if (findTagIn(record.tags(), subclass, code, tag, &index)) record.replace(index, 1, {});
}

}  // namespace host::database
