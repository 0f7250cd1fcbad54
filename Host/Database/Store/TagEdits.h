// Finding and editing single tags of records: those of slots and those of objects outside any drawing.
#pragma once

#include <cstddef>
#include <string_view>

#include "Database/Record.h"

namespace host::database {

/// First tag of the code inside the subclass (empty: anywhere), before extended data and outside 102 groups; `index` is
/// its number.
bool findTagIn(TagCursor cursor, std::string_view subclass, int code, Tag& tag, std::size_t* index = nullptr);
/// Replaces the tag or adds it at the end of the subclass; `bytes` is a whole tag.
void setTagIn(Record& record, std::string_view subclass, int code, std::string_view bytes);
void removeTagIn(Record& record, std::string_view subclass, int code);

}  // namespace host::database
