// What an open hatch object holds.
#pragma once

#include <span>
#include <string>

#include "Database/ObjectAccess.h"
#include "Hatching/HatchContent.h"

namespace host::hatching {

/// The hatch's content, with its name decoded. Loops that came from a file keep their tags.
struct HatchData final : database::ObjectData {
  HatchContent content;
  std::wstring name;
  const database::Slot* boundary = nullptr;  // what the latest loop was made of, while the hatch is open; for messages

  void read(database::TagCursor tags, const text::Codec& codec);
  void write(database::TagWriter& out) const override { write(out, content.loops); }
  /// The same with other loops in place of its own.
  void write(database::TagWriter& out, std::span<const HatchLoop> loops) const;
  const database::OwnTags* shelve(database::DrawingDatabase& db) const override;

  bool hasPattern() const { return content.isSolid || !content.pattern.empty(); }
};

}  // namespace host::hatching
