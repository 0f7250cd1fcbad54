// A prompt as it is shown: plain pieces and links that answer it. And what becomes of typed answers before they are
// sent. Pure functions.
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "Editor/InputSource.h"

namespace host::window {

struct PromptPiece {
  enum class Sends { Nothing, Text, Enter, Escape };
  QString text;
  Sends sends = Sends::Nothing;
  QString answer;  // Sends::Text
};

/// What stands in square brackets, divided by "/", answers the question: "Kumoa (U)" sends U; the only entry, when it
/// is the default, and what stands in angle brackets is Enter; "Esc - lopetus" is Esc, "Enter - paluu" Enter. Round
/// brackets are no links, except for those two.
std::vector<PromptPiece> promptPieces(const QString& prompt);
/// What Enter stands for, as the prompt names it: of angle brackets, or of square ones that hold one value only.
QString defaultOf(const QString& prompt);

/// A typed number with a decimal comma gets its point; everything else stays.
QString withDecimalPoint(const QString& text, editor::Wanted wanted);
/// A number typed where a point with a base is asked goes that far towards the cursor: "@12<90". Nothing when it is no
/// number, or cursor and base are one. `isOrtho` takes the nearest of the four directions.
std::optional<QString> typedDistance(const QString& text, const AcGePoint3d& base, const AcGePoint3d& cursor,
                                     bool isOrtho);
/// An example of an answer that is taken, in the window's language; empty for none.
QString exampleOf(editor::Wanted wanted);

}  // namespace host::window
