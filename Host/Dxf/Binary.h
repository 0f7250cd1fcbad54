// Binary drawings: the same tags as in text, with numbers as bytes.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Database/Store/SourceFile.h"

namespace host::dxf {

/// Whether a file begins as binary drawings do.
bool isBinary(std::string_view bytes);

/// How a binary drawing spells its tags. What spelling the text again would not give back byte for byte is kept.
class BinaryForm : public database::FileForm {
 public:
  std::string_view head() const override { return head_; }
  std::string_view tail() const override { return tail_; }
  void spell(std::string_view piece, std::string_view text, std::string& out) const override;

  /// The text of a binary drawing. In place of bytes that cannot be read stands a line that begins with kDamage and
  /// tells where they lie, in front of the next record.
  std::string textOf(std::string_view bytes);
  /// For text that is no longer the one that was read. From R13 on group codes have two bytes.
  void useForNewText(bool wasUpgraded);

  static constexpr std::string_view kDamage = "?byte ";

 private:
  void spellTag(std::string& out, int code, std::string_view value) const;

  bool wideCodes_ = true;
  std::unordered_map<std::size_t, std::string> kept_;  // bytes of a tag by its offset in the text
  std::string head_;                                   // the mark that files begin with, as this one has it
  std::string tail_;                                   // behind EOF
};

}  // namespace host::dxf
