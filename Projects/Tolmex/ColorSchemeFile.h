// Where the colours of a drawing come from and go to: its layers and the file tolm.ini on the host's support path.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "Tolmex/DocData.h"

namespace OrvLib {

/// Takes the colours of the area layers that the current drawing has; notes in the record when there is one.
void takeColorsFromDrawing(CDocData& data);

/// Takes the colours of area layers that have changed since the system saw them last, as an undone colour dialog leaves
/// them; a layer that has gone leaves the colour that the document was prepared with.
void followAreaColors(CDocData& data);

/// Takes the colours of the file, unless the drawing's own layers have given some. A missing file changes nothing.
void readColorSchemeFile(CDocData& data);

/// Writes the file where it was found, or into the current folder; a failure is printed on the command line.
void writeColorSchemeFile(const ColorScheme& scheme);

/// Gives the area layers of the current drawing their colours. Element layers that are missing are made first.
void applyAreaColors(CDocData& data);

/// Makes all layers of the system in the current drawing, overwriting colour and linetype of those that are there
/// (ensureLayer).
void ensureElementLayers(CDocData& data);

/// The element layer's name, to put an entity on. Undoing a document's first command takes away the layers that were
/// made with it, and users purge layers: one that is missing is made in the document's colours, one that is there stays
/// as it is.
const ACHAR* elementLayer(const ACHAR* name);

/// Puts an entity that is open for write on its element layer (elementLayer). False, as the command line then says,
/// when the host refuses.
bool putOnElementLayer(AcDbEntity& entity, const ACHAR* name);

}  // namespace OrvLib
