// Which entity is drawn above which.
#pragma once

#include <vector>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/Opened.h"

namespace OrvLib {

/// Makes the drawing sort by draw order everywhere: sets all 127 bits of the variable SORTENTS. A variable that has
/// them is not written.
void honorDrawOrder();

/// The draw-order table of the block that owns the entity, open for write; the table and the dictionary for it are made
/// when missing. Empty on failure. The owning block must not be open for write.
Opened<AcDbSortentsTable> sortTableOf(const AcDbEntity& entity);

/// Moves entities one after the other. Keeps the table that it used last open, so moving many entities of one block
/// costs one opening; while it lives no other code can open that table. Turns the drawing to draw order
/// (honorDrawOrder) with its first move. A move answers false, and changes nothing, when the entity or its table cannot
/// be opened or the host refuses.
class DrawOrder {
 public:
  bool moveToTop(AcDbObjectId entity);
  bool moveToBottom(AcDbObjectId entity);

 private:
  enum class End { Top, Bottom };
  bool move(AcDbObjectId entity, End end);

  Opened<AcDbSortentsTable> table_;
  AcDbObjectId block_;  // the block of table_
  bool honored_ = false;
};

/// Moves every entity on the layers to the top, layer after layer, the entities of one in the host's selection order;
/// goes on with the next layer at the first entity that cannot be moved. One walk through the drawing serves all.
void bringLayersToTop(const std::vector<const ACHAR*>& layers);

/// Shows the drawing anew.
void regenerate();

}  // namespace OrvLib
