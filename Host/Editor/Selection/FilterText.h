// Filter expressions as users type them.
#pragma once

#include <optional>
#include <string_view>

#include "Editor/Selection/SelectionFilter.h"
#include "Problems/Problem.h"

namespace host::editor {

/// Whether an answer is meant as `(ssget ...)`.
bool isFilterExpression(std::wstring_view text);

/// The filter of `(ssget "X" '((0 . "LWPOLYLINE") (8 . "RAK*")))`: methods X and A with or without "_"; lists quoted or
/// spelled with `list` and `cons`; points as (10 1.0 2.0); extended data as (-3 ("APPLICATION" (1000 . "value"))).
/// Without a list everything fits. The problem's text says what is wrong with the expression.
struct FilterExpression {
  bool isWholeDrawing = true;  // X: frozen layers and other spaces too
  SelectionFilter filter;
};
Result<FilterExpression> parseFilterExpression(std::wstring_view text, const database::DrawingDatabase& drawing);

/// Entities whose extended data of that application hold the two texts one after the other.
SelectionFilter filterOfTag(std::wstring_view application, std::wstring_view key, std::wstring_view value,
                            const database::DrawingDatabase& drawing);
/// Entities on layers whose names match the pattern.
SelectionFilter filterOfLayers(std::wstring_view pattern, const database::DrawingDatabase& drawing);

}  // namespace host::editor
