// Answers that code gives to a host command.
#pragma once

#include <vector>

#include "Editor/InputSource.h"
#include "adsdef.h"

namespace host::editor {

class CodeInput final : public InputSource {
 public:
  /// Adds one item by its type code; false for a type that is no answer.
  bool add(const resbuf& item);
  void add(Answer answer) { answers_.push_back(std::move(answer)); }
  Answer next(const Question& question) override;

 private:
  std::vector<Answer> answers_;
  std::size_t next_ = 0;
};

/// Adds the members of a selection set as one answer each and the Enter that ends the selection.
bool addSelectionSet(CodeInput& input, const ads_name set);

}  // namespace host::editor
