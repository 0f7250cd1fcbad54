// The legal states of a slot, on one page; debug builds check them where objects were opened or closed, where undo
// steps end or are taken, and where the drawing is saved.
//
// Where its record is
//   of the file    kNew unset, `begin` set      the record is the file's bytes
//   changed        the same with kChanged       the record is in `live`; undo takes kChanged back
//   new            kNew, no `begin`             the record is in `live`; undo sets kErased, for slots never go
// kNew and kChanged exclude each other. A new slot that is not erased has a record; one without is still being made,
// and NewSlots has it erased when that fails. kNeedsHandle is said of slots of the file only.
//
// What hangs on it
//   kUnmade        a new 3D polyline whose vertices are values (`unmade`); Slot::firstSub makes them slots, for good
//   kFollows       such a vertex until it is changed itself: it has the polyline's kErased, and no undo step knows it;
//                  when memory ends before all vertices are made, those that were made stay erased
//   kSubEntity     a vertex, attribute, sequence end, BLOCK or ENDBLK: kEntity too
//
// What is open on it (`live`)
//   none           nothing was opened, or DrawingDatabase::releaseObjects dropped what was closed and unchanged
//   closed         no readers, no writer; an object stays until releaseObjects, with its data when it is parked
//   read           an object with 1 to 256 readers, no writer
//   written        an object with a writer, no readers; isAppending from its adoption to its first close
// `open` leads from closed to read and written, `upgrade` from read to written, `downgrade` back, `close` to closed.
//
// A slot's address tells its database: slots lie in blocks that are aligned to their size and begin with the address of
// the DrawingDatabase (SlotPool). AcDbObjectId is nothing but a slot's address, as wide as the host interface has it,
// and must lead to its drawing; a pointer in each slot would make it an eighth larger.
#pragma once

#include "Database/Slot.h"

namespace host::database {

#ifdef NDEBUG
inline void checkSlot(const Slot& /*slot*/) {}
inline void checkSlots(const DrawingDatabase& /*db*/) {}
#else
/// Ends the program with a sentence when the slot is in no legal state.
void checkSlot(const Slot& slot);
/// The same for all slots of a drawing.
void checkSlots(const DrawingDatabase& db);
#endif

}  // namespace host::database
