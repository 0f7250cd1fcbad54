// What an open hatch object holds.
#pragma once

#include <string>

#include "Database/ObjectAccess.h"
#include "Hatching/HatchContent.h"

namespace host::hatching {

/// The hatch's content, with its name decoded. Loops that came from a file keep their tags.
struct HatchData : database::ObjectData {
  HatchContent content;
  std::wstring name;

  void read(database::TagCursor tags, const text::Codec& codec);
  void write(database::TagWriter& out) const override;

  bool hasPattern() const { return content.isSolid || !content.pattern.empty(); }
};

}  // namespace host::hatching
