// Where the colours of a drawing come from and go to: its layers and the file tolm.ini on the host's support path.
#pragma once

#include "Tolmex/DocData.h"

namespace OrvLib {

/// Takes the colours of the area layers that the current drawing has; notes in the record when there is one.
void takeColorsFromDrawing(CDocData& data);

/// Takes the colours of the file, unless the drawing's own layers have given some. A missing file changes nothing.
void readColorSchemeFile(CDocData& data);

/// Writes the file where it was found, or into the current folder; a failure is told on the command line.
void writeColorSchemeFile(const ColorScheme& scheme);

/// Gives the area layers of the current drawing their colours; missing layers are skipped.
void applyAreaColors(const ColorScheme& scheme);

/// Makes all layers of the system in the current drawing, overwriting colour and linetype of those that are there.
void ensureElementLayers(const ColorScheme& scheme);
/// Makes the element layer of that name, in the document's colours, when the drawing lacks it: undoing a document's
/// first command takes the layers away that were made with it.
void makeElementLayerIfMissing(const ACHAR* name);

}  // namespace OrvLib
